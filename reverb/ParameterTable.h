/**
    The engine's parameters in one constant table: what each is called, its unit, range and default, and what
    a change of it sets off. The engine itself reads it, and so do tools, documentation and tests.

        const ParameterInfo& info = parameterTable[Reverberation::reverbTime];
        std::cout << info.name << ": " << info.minimum << " to " << info.maximum << ' ' <<
    getUnitText(info.unit);
*/
#pragma once

#include "reverb/Reverberation.h"

#include <array>
#include <cstddef>

namespace vesk::audio
{

enum class ParameterUnit
{
    decibels,
    seconds,
    milliseconds,
    percent,
    hertz,
    decibelsPerOctave,
    index, ///< stored as the nearest whole number
    toggle ///< off at 0.5 and below, on above
};

/** What a change sets off, beside being stored; to be combined. All but the rebuilds happen at once. */
enum ParameterEffect : unsigned
{
    noEffect = 0, ///< process reads the value
    updatesGains = 1u << 0,
    rebuildsLines = 1u << 1, ///< empties the tail
    updatesPreDelay = 1u << 2,
    updatesModulation = 1u << 3,
    outdatesEarly = 1u << 4, ///< early impulse responses, rebuilt by effectuateParameterChanges
    outdatesPost = 1u << 5   ///< the post-processor's, likewise
};

struct ParameterInfo
{
    Reverberation::Parameter index;
    const char* name; ///< as its enumerator
    const char* description;
    ParameterUnit unit;
    float minimum;
    float maximum;
    float defaultValue;
    unsigned effects; ///< of ParameterEffect
};

inline constexpr std::array<ParameterInfo, Reverberation::numParameters> parameterTable{{
    {Reverberation::dryGain, "dryGain", "level of the dry signal", ParameterUnit::decibels, -48, 18, 0,
     noEffect},
    {Reverberation::wetGain, "wetGain", "level of the wet signal", ParameterUnit::decibels, -48, 18, -15,
     noEffect},
    {Reverberation::reverbTime, "reverbTime", "time for the tail to fall by 60 dB at middle frequencies",
     ParameterUnit::seconds, 0.1f, 32, 2, updatesGains | outdatesEarly},
    {Reverberation::lowTimeScale, "lowTimeScale", "reverb time below the crossover, relative to reverbTime",
     ParameterUnit::percent, 20, 200, 100, updatesGains},
    {Reverberation::crossoverFrequency, "crossoverFrequency", "corner of the shelf in each line",
     ParameterUnit::hertz, 50, 20000, 250, updatesGains},
    {Reverberation::dampingFrequency, "dampingFrequency", "corner of the damping in each line",
     ParameterUnit::hertz, 1000, 20000, 12000, updatesGains},
    {Reverberation::preDelay, "preDelay", "delay of the wet signal", ParameterUnit::milliseconds, 0, 500, 0,
     updatesPreDelay},
    {Reverberation::roomSize, "roomSize", "scales all delays by 1 (at 0) to 5 (at 100)",
     ParameterUnit::percent, 0, 100, 30, rebuildsLines | outdatesEarly},
    {Reverberation::stereoSpread, "stereoSpread", "width of the wet signal", ParameterUnit::percent, 0, 100,
     100, noEffect},
    {Reverberation::modulationRate, "modulationRate", "rate of the tail's modulation", ParameterUnit::hertz,
     0.1f, 5, 1, updatesModulation},
    {Reverberation::modulationDepth, "modulationDepth",
     "depth of the tail's modulation; 0 takes the stage out", ParameterUnit::percent, 0, 100, 20,
     updatesModulation},
    {Reverberation::earlyLevel, "earlyLevel", "level of the early reflections", ParameterUnit::decibels, -48,
     18, 0, outdatesEarly},
    {Reverberation::earlyPattern, "earlyPattern", "pattern of the early reflections", ParameterUnit::index, 0,
     10, 2, outdatesEarly},
    {Reverberation::highPassFrequency, "highPassFrequency", "equalizer, high-pass corner",
     ParameterUnit::hertz, 1, 5000, 10, outdatesEarly | outdatesPost},
    {Reverberation::highPassSlope, "highPassSlope", "equalizer, high-pass slope",
     ParameterUnit::decibelsPerOctave, 3, 24, 24, outdatesEarly | outdatesPost},
    {Reverberation::lowShelfFrequency, "lowShelfFrequency", "equalizer, low-shelf corner",
     ParameterUnit::hertz, 20, 20000, 200, outdatesEarly | outdatesPost},
    {Reverberation::lowShelfGain, "lowShelfGain", "equalizer, low-shelf gain", ParameterUnit::decibels, -12,
     12, 0, outdatesEarly | outdatesPost},
    {Reverberation::lowShelfSlope, "lowShelfSlope", "equalizer, low-shelf slope",
     ParameterUnit::decibelsPerOctave, 3, 24, 12, outdatesEarly | outdatesPost},
    {Reverberation::highShelfFrequency, "highShelfFrequency", "equalizer, high-shelf corner",
     ParameterUnit::hertz, 20, 20000, 2000, outdatesEarly | outdatesPost},
    {Reverberation::highShelfGain, "highShelfGain", "equalizer, high-shelf gain", ParameterUnit::decibels,
     -12, 12, 0, outdatesEarly | outdatesPost},
    {Reverberation::highShelfSlope, "highShelfSlope", "equalizer, high-shelf slope",
     ParameterUnit::decibelsPerOctave, 3, 24, 12, outdatesEarly | outdatesPost},
    {Reverberation::lowPassFrequency, "lowPassFrequency", "equalizer, low-pass corner", ParameterUnit::hertz,
     200, 25000, 8000, outdatesEarly | outdatesPost},
    {Reverberation::lowPassSlope, "lowPassSlope", "equalizer, low-pass slope",
     ParameterUnit::decibelsPerOctave, 3, 24, 6, outdatesEarly | outdatesPost},
    {Reverberation::muteDry, "muteDry", "wet signal only", ParameterUnit::toggle, 0, 1, 0, noEffect},
    {Reverberation::muteTail, "muteTail", "early reflections only", ParameterUnit::toggle, 0, 1, 0, noEffect},
    {Reverberation::muteEarly, "muteEarly", "tail only", ParameterUnit::toggle, 0, 1, 0, noEffect},
}};

static_assert(
    []
    {
        for (std::size_t i = 0; i < parameterTable.size(); ++i)
            if (static_cast<std::size_t>(parameterTable[i].index) != i)
                return false;
        return true;
    }(),
    "a row stands at its parameter's index");

/** Short text of a unit, empty for a bare number. */
constexpr const char* getUnitText(ParameterUnit unit)
{
    switch (unit)
    {
    case ParameterUnit::decibels: return "dB";
    case ParameterUnit::seconds: return "s";
    case ParameterUnit::milliseconds: return "ms";
    case ParameterUnit::percent: return "%";
    case ParameterUnit::hertz: return "Hz";
    case ParameterUnit::decibelsPerOctave: return "dB/octave";
    case ParameterUnit::index:
    case ParameterUnit::toggle: break;
    }
    return "";
}

} // namespace vesk::audio
