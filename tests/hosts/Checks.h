/**
    What every format is held to, in whichever host: noise comes back changed, finite and not too loud, rings on
    and dies away.
*/
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <random>
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
    void expect(bool condition, const char* what)
    {
        if (condition)
            return;
        std::fprintf(stderr, "FAILED: %s\n", what);
        ++failures;
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

/** Processes one block of all channels in place. */
using Process = std::function<void(Channels&)>;

inline float getPeak(const Channels& channels)
{
    float peak = 0.0f;
    for (const auto& channel : channels)
        for (const float sample : channel)
            peak = std::max(peak, std::isfinite(sample) ? std::abs(sample) : INFINITY);
    return peak;
}

/** Noise of one second, then four of silence: the preset that a new instance opens on has died away by then. */
inline void checkReverb(Checks& checks, double sampleRate, int blockSize, int numChannels,
                        const Process& process)
{
    constexpr double noiseSeconds = 1.0;
    constexpr double tailSeconds = 4.0;
    constexpr float amplitude = 0.25f;

    const auto getBlocks = [&](double seconds) { return static_cast<int>(seconds * sampleRate / blockSize); };
    std::minstd_rand random(1);
    std::uniform_real_distribution<float> distribution(-amplitude, amplitude);

    Channels block(static_cast<std::size_t>(numChannels),
                   std::vector<float>(static_cast<std::size_t>(blockSize)));
    float loudest = 0.0f;
    float difference = 0.0f;
    for (int i = 0; i < getBlocks(noiseSeconds); ++i)
    {
        for (auto& channel : block)
            std::generate(channel.begin(), channel.end(), [&] { return distribution(random); });
        const auto input = block;
        process(block);
        loudest = std::max(loudest, getPeak(block));
        for (std::size_t channel = 0; channel < block.size(); ++channel)
            for (std::size_t sample = 0; sample < block[channel].size(); ++sample)
                difference = std::max(difference, std::abs(block[channel][sample] - input[channel][sample]));
    }

    float first = 0.0f;
    float last = 0.0f;
    const int numTailBlocks = getBlocks(tailSeconds);
    for (int i = 0; i < numTailBlocks; ++i)
    {
        for (auto& channel : block)
            std::fill(channel.begin(), channel.end(), 0.0f);
        process(block);
        if (i < 1 + numTailBlocks / 20)
            first = std::max(first, getPeak(block));
        last = getPeak(block);
    }

    std::printf("%6.0f Hz, block %4d, %d channel(s): peak %.3f, tail from %.4f to %.7f\n", sampleRate,
                blockSize, numChannels, static_cast<double>(loudest), static_cast<double>(first),
                static_cast<double>(last));
    checks.expect(std::isfinite(loudest) && std::isfinite(last), "the output is finite");
    checks.expect(loudest > 0.1f * amplitude && loudest < 8.0f * amplitude, "the output has a sound level");
    checks.expect(difference > 0.1f * amplitude, "the output is not the input");
    checks.expect(first > 0.001f * amplitude, "the reverb rings on");
    checks.expect(last < 0.01f * first, "the reverb dies away");
}

} // namespace hosts
