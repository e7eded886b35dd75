/**
    Plain text in columns, for the help page and the reports.
*/
#pragma once

#include <string>

namespace ambrel::render
{

/** The text in a column that starts at a position, broken at blanks so that no line is longer than 80, with the
    head to the left of its first line if it fits there, else above. Ends with a line end. */
std::string wrapBeside(const std::string& head, const std::string& text, std::size_t column);

} // namespace ambrel::render
