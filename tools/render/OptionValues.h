/**
    The values that options take, from text, with their limits. Everything here raises UsageError with one
    sentence that names the option, what was written and what would be right.

    Numbers are read the same way in every locale: a point, no grouping.
*/
#pragma once

#include "tools/render/Options.h"

#include <string>
#include <vector>

namespace ambrel::render
{

struct NumberRange
{
    double minimum;
    double maximum;
    const char* unit; ///< may be empty
};

double parseNumber(const std::string& option, const std::string& text, const NumberRange& range);
int parseInteger(const std::string& option, const std::string& text, int minimum, int maximum);

/** One of the choices, as its position. */
std::size_t parseChoice(const std::string& option, const std::string& text,
                        const std::vector<std::string>& choices);

/** "name=value" over the engine's parameter table; switches also take on and off. */
ParameterSetting parseSetting(const std::string& option, const std::string& text);

/** The shortest decimal text that reads back as the same number: 0.1 for the float and for the double. */
template <typename Number>
std::string numberText(Number value);

extern template std::string numberText(float);
extern template std::string numberText(double);

} // namespace ambrel::render
