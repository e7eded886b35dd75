#include "tools/render/LevelMeter.h"

#include <algorithm>
#include <cmath>

namespace ambrel::render
{

double toLevel(double linear)
{
    return linear > 0.0 ? std::max(silenceLevel, 20.0 * std::log10(linear)) : silenceLevel;
}

LevelMeter::LevelMeter(double sampleRate, int numChannels)
    : channels(numChannels), loudness(sampleRate, numChannels)
{
}

void LevelMeter::add(const juce::AudioBuffer<float>& block, int start, int numSamples)
{
    for (int channel = 0; channel < channels; ++channel)
    {
        const float* samples = block.getReadPointer(channel, start);

        for (int i = 0; i < numSamples; ++i)
        {
            peak = std::max(peak, std::abs(samples[i]));
            energy += static_cast<double>(samples[i]) * static_cast<double>(samples[i]);
        }
    }
    length += numSamples;
    loudness.add(block, start, numSamples);
}

Levels LevelMeter::getLevels() const
{
    const auto count = static_cast<double>(length) * channels;
    return {length, toLevel(static_cast<double>(peak)),
            toLevel(count > 0.0 ? std::sqrt(energy / count) : 0.0), loudness.getIntegrated()};
}

} // namespace ambrel::render
