/**
    What the user is told about a signal at the end: its length, peak, RMS level and loudness.

    Cost: that of the loudness meter. Thread: one.
*/
#pragma once

#include "tools/render/LoudnessMeter.h"

#include <cstdint>
#include <optional>

namespace ambrel::render
{

/** The lowest level that is told as a number, dB; what is below reads as silence. */
inline constexpr double silenceLevel = -200.0;

/** 20 log10 of a linear value, not below silenceLevel. */
double toLevel(double linear);

struct Levels
{
    std::int64_t numSamples = 0;
    double peak = silenceLevel;     ///< the largest magnitude of all channels, dBFS
    double rms = silenceLevel;      ///< over all channels, dB relative to a square wave at full scale
    std::optional<double> loudness; ///< LUFS
};

class LevelMeter
{
public:
    LevelMeter(double sampleRate, int numChannels);

    void add(const juce::AudioBuffer<float>& block, int start, int numSamples);

    /** The largest magnitude so far, linear. */
    float getPeak() const { return peak; }

    Levels getLevels() const;

private:
    int channels;
    std::int64_t length = 0;
    float peak = 0.0f;
    double energy = 0.0;
    LoudnessMeter loudness;
};

} // namespace ambrel::render
