/**
    What all hosts of the tests share: counting failures, blocks of noise, and the sign that the plug-in's start-up
    code has run.
*/
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

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

/** Loading the plug-in runs its start-up code, which turns denormals off on the loading thread: the sign that no
    linker has left that code out. Clear before loading, ask behind it. */
class StartUpSign
{
public:
#if defined(__SSE2__)
    StartUpSign() { _mm_setcsr(_mm_getcsr() & ~denormalBits); }
    ~StartUpSign() { _mm_setcsr(_mm_getcsr() & ~denormalBits); }
    bool isThere() const { return (_mm_getcsr() & denormalBits) == denormalBits; }

private:
    static constexpr unsigned denormalBits = 0x8040;
#else
    bool isThere() const { return true; }
#endif
};

using Channels = std::vector<std::vector<float>>;

constexpr float noiseAmplitude = 0.25f;

/** Louder than any sound that noise can come out as. */
constexpr float loudestOutput = 8.0f * noiseAmplitude;

/** The same noise for everyone who starts with the same seed. */
class Noise
{
public:
    explicit Noise(unsigned seed = 1) : random(seed) {}

    Channels make(int numSamples, std::size_t numChannels = 2)
    {
        Channels block(numChannels, std::vector<float>(static_cast<std::size_t>(numSamples)));
        for (std::size_t sample = 0; sample < block[0].size(); ++sample)
            for (auto& channel : block)
                channel[sample] = distribution(random);
        return block;
    }

private:
    std::minstd_rand random;
    std::uniform_real_distribution<float> distribution{-noiseAmplitude, noiseAmplitude};
};

inline Channels makeSilence(int numSamples)
{
    return Channels(2, std::vector<float>(static_cast<std::size_t>(numSamples)));
}

/** The highest sample; infinite if one is not finite. */
inline float getPeak(const Channels& channels)
{
    float peak = 0.0f;
    for (const auto& channel : channels)
        for (const float sample : channel)
            peak = std::max(peak, std::isfinite(sample) ? std::abs(sample)
                                                        : std::numeric_limits<float>::infinity());
    return peak;
}

/** The largest distance of two blocks of the same size. */
inline float getDifference(Channels first, const Channels& second)
{
    for (std::size_t channel = 0; channel < first.size(); ++channel)
        for (std::size_t sample = 0; sample < first[channel].size(); ++sample)
            first[channel][sample] -= second[channel][sample];
    return getPeak(first);
}

} // namespace hosts
