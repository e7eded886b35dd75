/**
    The command line: from words to Options.

        const Options options = parseCommandLine({argv + 1, argv + argc});

    Options may stand anywhere, as "--option value" or "--option=value"; "--" ends them. One table holds each
    option's name, argument, help text and meaning, so the help always tells what the program takes. Values
    are checked here; files are not looked at.

    The texts are complete pages with a line end, ready to be printed.
*/
#pragma once

#include "tools/render/Options.h"

#include <string>
#include <vector>

namespace ambrel::render
{

/** @throws UsageError with one sentence for the user */
Options parseCommandLine(const std::vector<std::string>& arguments);

} // namespace ambrel::render
