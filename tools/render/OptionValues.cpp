#include "tools/render/OptionValues.h"

#include "reverb/ParameterTable.h"
#include "tools/render/Errors.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace ambrel::render
{

namespace
{

using vesk::audio::ParameterInfo;
using vesk::audio::parameterTable;
using vesk::audio::ParameterUnit;

/** The whole text as a finite number. */
std::optional<double> toNumber(const std::string& text)
{
    const char* first = text.data();
    const char* last = first + text.size();

    if (first != last && *first == '+')
        ++first;

    double value = 0.0;
    const auto [end, error] = std::from_chars(first, last, value);

    if (error != std::errc() || end != last || !std::isfinite(value))
        return std::nullopt;
    return value;
}

template <typename Number>
std::string rangeText(Number minimum, Number maximum, const std::string& unit)
{
    return numberText(minimum) + " to " + numberText(maximum) + (unit.empty() ? "" : " " + unit);
}

const ParameterInfo& findParameter(const std::string& option, const std::string& name)
{
    const auto found =
        std::ranges::find_if(parameterTable, [&](const ParameterInfo& info) { return name == info.name; });

    if (found == parameterTable.end())
        throw UsageError(option + ": there is no parameter '" + name + "' (--list-parameters shows them)");
    return *found;
}

std::optional<double> toSwitch(const std::string& text)
{
    if (text == "on")
        return 1.0;
    if (text == "off")
        return 0.0;
    return std::nullopt;
}

} // namespace

template <typename Number>
std::string numberText(Number value)
{
    char text[64];
    const auto result = std::to_chars(std::begin(text), std::end(text), value);
    return {text, result.ptr};
}

template std::string numberText(float);
template std::string numberText(double);

double parseNumber(const std::string& option, const std::string& text, const NumberRange& range)
{
    const std::optional<double> value = toNumber(text);

    if (!value)
        throw UsageError(option + ": '" + text + "' is not a number");
    if (*value < range.minimum || *value > range.maximum)
        throw UsageError(option + ": " + text + " is out of range (" +
                         rangeText(range.minimum, range.maximum, range.unit) + ")");
    return *value;
}

int parseInteger(const std::string& option, const std::string& text, int minimum, int maximum)
{
    const double value =
        parseNumber(option, text, {static_cast<double>(minimum), static_cast<double>(maximum), ""});

    if (value != std::floor(value))
        throw UsageError(option + ": '" + text + "' is not a whole number");
    return static_cast<int>(value);
}

std::size_t parseChoice(const std::string& option, const std::string& text,
                        const std::vector<std::string>& choices)
{
    const auto found = std::ranges::find(choices, text);

    if (found != choices.end())
        return static_cast<std::size_t>(found - choices.begin());

    std::string list;

    for (const std::string& choice : choices)
        list += (list.empty() ? "" : ", ") + choice;
    throw UsageError(option + ": '" + text + "' is none of " + list);
}

ParameterSetting parseSetting(const std::string& option, const std::string& text)
{
    const auto equals = text.find('=');

    if (equals == std::string::npos)
        throw UsageError(option + ": '" + text + "' is not of the form parameter=value");

    const ParameterInfo& info = findParameter(option, text.substr(0, equals));
    const std::string valueText = text.substr(equals + 1);

    if (info.unit == ParameterUnit::toggle)
        if (const auto value = toSwitch(valueText))
            return {static_cast<int>(info.index), static_cast<float>(*value)};

    // The limits are compared in the table's precision, so that "0.1" is a lower limit of 0.1f.
    const std::string unit = getUnitText(info.unit);
    const std::optional<double> value = toNumber(valueText);

    if (!value)
        throw UsageError(option + ": '" + valueText + "' is no value for " + info.name);

    const auto number = static_cast<float>(*value);

    if (!(number >= info.minimum && number <= info.maximum))
        throw UsageError(option + ": " + text + " is out of range (" +
                         rangeText(info.minimum, info.maximum, unit) + ")");
    return {static_cast<int>(info.index), number};
}

} // namespace ambrel::render
