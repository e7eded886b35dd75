/**
    The pages that tell about the program, complete and with a line end, ready to be printed.
*/
#pragma once

#include <string>

namespace ambrel::render
{

/** What --help prints. */
std::string getHelpText();

/** What --list-parameters prints: the engine's parameter table. */
std::string getParameterListText();

} // namespace ambrel::render
