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

    return wrapBeside("Settings:", text.empty() ? "the engine's defaults" : text, 11);
}

std::string densityLine(const RoomMeasures& measures)
{
    std::string text = "Echo density: ";

    for (const int milliseconds : {10, 20, 50, 100, 200, 500, 1000})
    {
        const auto index = static_cast<std::size_t>(milliseconds / (1000.0 * RoomMeasures::densityStep));

        if (index < measures.echoDensity.size())
            text += decimals(static_cast<double>(measures.echoDensity[index]), 2) + " at " +
                    std::to_string(milliseconds) + " ms, ";
    }

    if (measures.mixingTime)
        return text + "diffuse (" + decimals(RoomMeasures::diffuseDensity, 1) + ") from " +
               decimals(*measures.mixingTime * 1000.0, 0) + " ms\n";
    return text + "never diffuse\n";
}

std::string flatnessLine(const RoomMeasures& measures)
{
    if (!measures.flatness)
        return "Flatness of the late spectrum: the tail is too short to tell\n";
    return "Flatness of the late spectrum: " + decimals(*measures.flatness, 3) + " from " +
           decimals(*measures.flatnessStart, 2) + " s on (noise: 0.56)\n";
}

std::string stereoLines(const RoomMeasures& measures)
{
    const std::string split = decimals(RoomMeasures::correlationSplit * 1000.0, 0);
    std::string text = "Correlation of the channels: " + decimals(measures.correlationEarly, 3) + " to " +
                       split + " ms, " + decimals(measures.correlationLate, 3) + " from there to " +
                       decimals(RoomMeasures::correlationEnd * 1000.0, 0) + " ms\nBalance, left over right:";

    for (const double difference : measures.balance)
    {
        text += difference < 0.0 ? " " : " +";
        text += decimals(difference, 1);
    }
    return text + " dB, every " + decimals(RoomMeasures::balanceStep * 1000.0, 0) + " ms\n";
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

    return object.add("level", rounded(band.level))
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
    return "Room: " + (room.preset.empty() ? std::string("no preset") : "preset '" + room.preset + "'") +
           ", impulse from " + room.impulse + ", " + decimals(measures.sampleRate, 0) + " Hz, " +
           decimals(measures.duration, 2) + " s, peak " + decimals(measures.peak, 1) + " dBFS\n" +
           settingsText(room) + "\n" + bandTable(measures) + "\n" + densityLine(measures) +
           flatnessLine(measures) + stereoLines(measures);
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
                                 .add("peak", rounded(measures.peak))
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
