/**
    Every option that the program takes: its name, its argument, its help text and what it means, in one table that
    the parser and the help page both read.
*/
#pragma once

#include "tools/render/Options.h"

#include <span>
#include <string>

namespace ambrel::render
{

enum class Argument
{
    none,
    required,
    optional ///< only as "--option=value"
};

struct OptionDescription
{
    const char* name; ///< with its two dashes
    char letter;      ///< of the short form; 0 if there is none
    Argument argument;
    const char* argumentName;
    const char* help;

    /** Takes over the value, which is empty for an option without one. The name is the one that was written.
        @throws UsageError for a value that makes no sense */
    void (*apply)(Options&, const std::string& name, const std::string& value);
};

std::span<const OptionDescription> getOptionTable();

} // namespace ambrel::render
