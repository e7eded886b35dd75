#include "tools/render/RoomReport.h"

#include "product/AmbrelConstants.h"
#include "reverb/ParameterTable.h"
#include "tools/render/OptionValues.h"
#include "tools/render/TextLayout.h"

#include <juce_core/juce_core.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <optional>

namespace ambrel::render
{

namespace
{

using measures::BandMeasures;
using measures::RoomMeasures;

//==============================================================================
// Table

constexpr int columnWidth = 9;
constexpr std::size_t textColumn = 14;

std::string padded(const std::string& text)
{
    return std::string(static_cast<std::size_t>(std::max(0, columnWidth - static_cast<int>(text.size()))),
                       ' ') +
           text;
}

std::string decimals(double value, int places)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", places, value);
    return text;
}

std::string cell(const std::optional<double>& value, int places)
{
    return padded(value ? decimals(*value, places) : "-");
}

std::string frequencyText(double frequency)
{
    if (frequency <= 0.0)
        return "all";
    return frequency < 1000.0 ? decimals(frequency, 0) + " Hz" : decimals(frequency / 1000.0, 0) + " kHz";
}

std::string rowOf(const BandMeasures& band)
{
    return padded(frequencyText(band.centre)) + cell(band.level, 1) + cell(band.earlyDecayTime, 2) +
           cell(band.t20, 2) + cell(band.t30, 2) + cell(band.straightness, 2) + cell(band.c50, 1) +
           cell(band.c80, 1) + "\n";
}

std::string bandTable(const RoomMeasures& measures)
{
    std::string text;

    for (const char* head : {"band", "level", "EDT", "T20", "T30", "straight", "C50", "C80"})
        text += padded(head);
    text += "\n";
    for (const char* unit : {"", "dB", "s", "s", "s", "dB", "dB", "dB"})
        text += padded(unit);
    text += "\n";
    text += rowOf(measures.broadband);
    for (const BandMeasures& octave : measures.octaves)
        text += rowOf(octave);
    return text;
}

/** What differs from the engine's defaults. */
std::string settingsText(const RoomDescription& room)
{
    std::string text;

    for (const vesk::audio::ParameterInfo& info : vesk::audio::parameterTable)
        for (const auto& [name, value] : room.settings)
            if (name == info.name && value != info.defaultValue)
                text += (text.empty() ? "" : ", ") + name + "=" + numberText(value);

    return wrapBeside("Settings:", text.empty() ? "the engine's defaults" : text, textColumn);
}

std::string densityText(const RoomMeasures& measures)
{
    std::string text;

    for (const int milliseconds : {10, 20, 50, 100, 200, 500, 1000})
    {
        const auto index = static_cast<std::size_t>(milliseconds / (1000.0 * RoomMeasures::densityStep));

        if (index < measures.echoDensity.size())
            text += decimals(static_cast<double>(measures.echoDensity[index]), 2) + " at " +
                    std::to_string(milliseconds) + " ms, ";
    }

    if (measures.mixingTime)
        return text + "diffuse (" + decimals(RoomMeasures::diffuseDensity, 1) + ") from " +
               decimals(*measures.mixingTime * 1000.0, 0) + " ms on";
    return text + "never diffuse";
}

std::string flatnessText(const RoomMeasures& measures)
{
    if (!measures.flatness)
        return "the tail is too short to tell";
    return decimals(*measures.flatness, 3) + " from " + decimals(*measures.flatnessStart, 2) +
           " s on (noise: 0.56)";
}

std::string correlationText(const RoomMeasures& measures)
{
    const std::string split = decimals(RoomMeasures::correlationSplit * 1000.0, 0);
    return decimals(measures.correlationEarly, 3) + " to " + split + " ms, " +
           decimals(measures.correlationLate, 3) + " from " + split + " to " +
           decimals(RoomMeasures::correlationEnd * 1000.0, 0) + " ms";
}

/** The first windows; where a tail gets long, the later ones only scatter. */
std::string balanceText(const RoomMeasures& measures)
{
    constexpr std::size_t numShown = 10;
    std::string text;

    for (std::size_t i = 0; i < std::min(numShown, measures.balance.size()); ++i)
    {
        const double shown = std::round(measures.balance[i] * 10.0) / 10.0;
        text += shown > 0.0 ? "+" : "";
        text += decimals(shown + 0.0, 1) + " "; // no minus sign before a nought
    }

    if (text.empty())
        return "the tail is too short to tell";
    return text + "dB left over right, every " + decimals(RoomMeasures::balanceStep * 1000.0, 0) + " ms";
}

//==============================================================================
// JSON

/** Enough digits for every measure, few enough to read. */
double rounded(double value)
{
    constexpr double scale = 1e5;
    return std::round(value * scale) / scale;
}

juce::var toVar(const std::optional<double>& value)
{
    return value ? juce::var(rounded(*value)) : juce::var();
}

template <typename Values>
juce::var toArray(const Values& values)
{
    juce::Array<juce::var> array;

    for (const auto value : values)
        array.add(rounded(static_cast<double>(value)));
    return array;
}

/** Properties keep the order in which they are added. */
class ObjectBuilder
{
public:
    ObjectBuilder& add(const char* name, const juce::var& value)
    {
        object->setProperty(name, value);
        return *this;
    }

    operator juce::var() const { return juce::var(object.get()); }

private:
    juce::DynamicObject::Ptr object = new juce::DynamicObject();
};

juce::var toVar(const BandMeasures& band)
{
    ObjectBuilder object;

    if (band.centre > 0.0)
        object.add("centre", band.centre);

    return object.add("level", toVar(band.level))
        .add("earlyDecayTime", toVar(band.earlyDecayTime))
        .add("t20", toVar(band.t20))
        .add("t30", toVar(band.t30))
        .add("straightness", toVar(band.straightness))
        .add("c50", toVar(band.c50))
        .add("c80", toVar(band.c80));
}

template <typename Values>
juce::var toCurve(double step, const Values& values)
{
    return ObjectBuilder().add("step", step).add("values", toArray(values));
}

juce::var toSettings(const RoomDescription& room)
{
    ObjectBuilder object;

    for (const auto& [name, value] : room.settings)
        object.add(name.c_str(), rounded(static_cast<double>(value)));
    return object;
}

} // namespace

std::string createReportTable(const RoomMeasures& measures, const RoomDescription& room)
{
    const std::string head =
        (room.preset.empty() ? std::string("no preset") : "preset '" + room.preset + "'") +
        ", impulse from " + room.impulse + ", " + decimals(measures.sampleRate, 0) + " Hz, " +
        decimals(measures.duration, 2) + " s, peak " + (measures.peak ? decimals(*measures.peak, 1) : "-") +
        " dBFS";

    std::string text = wrapBeside("Room:", head, textColumn) + settingsText(room);
    text += "\n";
    text += bandTable(measures);
    text += "\n";
    text += wrapBeside("Density:", densityText(measures), textColumn);
    text += wrapBeside("Flatness:", flatnessText(measures), textColumn);
    text += wrapBeside("Correlation:", correlationText(measures), textColumn);
    text += wrapBeside("Balance:", balanceText(measures), textColumn);
    return text;
}

std::string createReportJson(const RoomMeasures& measures, const RoomDescription& room)
{
    juce::Array<juce::var> octaves;

    for (const BandMeasures& octave : measures.octaves)
        octaves.add(toVar(octave));

    const juce::var correlation = ObjectBuilder()
                                      .add("early", rounded(measures.correlationEarly))
                                      .add("late", rounded(measures.correlationLate))
                                      .add("split", RoomMeasures::correlationSplit)
                                      .add("end", RoomMeasures::correlationEnd);

    const juce::var report = ObjectBuilder()
                                 .add("version", AmbrelConstants::plugInVersion)
                                 .add("preset", juce::String::fromUTF8(room.preset.c_str()))
                                 .add("impulse", room.impulse.c_str())
                                 .add("settings", toSettings(room))
                                 .add("sampleRate", measures.sampleRate)
                                 .add("duration", rounded(measures.duration))
                                 .add("peak", toVar(measures.peak))
                                 .add("broadband", toVar(measures.broadband))
                                 .add("octaves", octaves)
                                 .add("mixingTime", toVar(measures.mixingTime))
                                 .add("flatness", toVar(measures.flatness))
                                 .add("flatnessStart", toVar(measures.flatnessStart))
                                 .add("correlation", correlation)
                                 .add("balance", toCurve(RoomMeasures::balanceStep, measures.balance))
                                 .add("echoDensity", toCurve(RoomMeasures::densityStep, measures.echoDensity))
                                 .add("decay", toCurve(RoomMeasures::decayStep, measures.broadband.decay));

    return juce::JSON::toString(report).toStdString() + "\n";
}

} // namespace ambrel::render
