/** What all hosts of the tests share: counting failures, and blocks of noise. */
#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

namespace hosts
{

/** Counts what fails and says so. */
class Checks
{
public:
    bool expect(bool condition, const std::string& what)
    {
        if (!condition)
        {
            std::fprintf(stderr, "FAILED: %s\n", what.c_str());
            ++failures;
        }
        return condition;
    }

    int failures = 0;
};

using Block = juce::AudioBuffer<float>;

constexpr float noiseAmplitude = 0.25f;

/** Louder than any sound that noise can come out as. */
constexpr float loudestOutput = 8.0f * noiseAmplitude;

/** The same noise for everyone who starts with the same seed. */
class Noise
{
public:
    Block make(int numSamples, int numChannels = 2)
    {
        Block block(numChannels, numSamples);
        for (int sample = 0; sample < numSamples; ++sample)
            for (int channel = 0; channel < numChannels; ++channel)
                block.setSample(channel, sample, distribution(random));
        return block;
    }

private:
    std::minstd_rand random;
    std::uniform_real_distribution<float> distribution{-noiseAmplitude, noiseAmplitude};
};

/** The highest sample; infinite if one is not finite. */
inline float getPeak(const Block& block)
{
    float peak = 0.0f;
    for (int channel = 0; channel < block.getNumChannels(); ++channel)
        for (int i = 0; i < block.getNumSamples(); ++i)
        {
            const float sample = std::abs(block.getSample(channel, i));
            peak = std::max(peak, std::isfinite(sample) ? sample : std::numeric_limits<float>::infinity());
        }
    return peak;
}

/** The largest distance of two blocks of the same size. */
inline float getDifference(const Block& first, const Block& second)
{
    Block difference;
    difference.makeCopyOf(first);
    for (int channel = 0; channel < first.getNumChannels(); ++channel)
        difference.addFrom(channel, 0, second, channel, 0, first.getNumSamples(), -1.0f);
    return getPeak(difference);
}

} // namespace hosts
