/**
    Seeded material and independent references for the tests of the signal core and the convolver. The
    references are plain loops in double precision, written from the definitions.
*/
#pragma once

#include "core/Signal.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

namespace vesk::audio::test
{

/** Uniform noise, the same on every platform. */
inline std::vector<float> makeNoise(int n, unsigned seed, float low = -1.0f, float high = 1.0f)
{
    std::mt19937 generator(seed);
    std::vector<float> result(static_cast<std::size_t>(n));
    for (auto& value : result)
        value = low + (high - low) * (static_cast<float>(generator() >> 8) * 0x1p-24f);
    return result;
}

inline Signal32 makeSignal(const std::vector<std::vector<float>>& channels)
{
    Signal32 result(static_cast<int>(channels.size()), static_cast<int>(channels.at(0).size()));
    for (std::size_t c = 0; c < channels.size(); ++c)
        std::copy(channels[c].begin(), channels[c].end(), result.getWriteChannelPtr(static_cast<int>(c)));
    return result;
}

/** Different noise in each channel. */
inline Signal32 makeNoiseSignal(int channels, int samples, unsigned seed)
{
    std::vector<std::vector<float>> noise;
    for (int c = 0; c < channels; ++c)
        noise.push_back(makeNoise(samples, seed * 64 + static_cast<unsigned>(c)));
    return makeSignal(noise);
}

inline std::span<const float> getChannel(const Signal<float>& signal, int channel)
{
    return {signal.getChannelPtr(channel), static_cast<std::size_t>(std::max(signal.numSamples, 0))};
}

inline std::vector<float> toVector(const Signal<float>& signal, int channel)
{
    const auto samples = getChannel(signal, channel);
    return {samples.begin(), samples.end()};
}

/** All channels, to be compared and printed. */
inline std::vector<std::vector<float>> toVectors(const Signal<float>& signal)
{
    std::vector<std::vector<float>> result;
    for (int c = 0; c < signal.numChannels; ++c)
        result.push_back(toVector(signal, c));
    return result;
}

/** Samples begin to begin + length of every channel. */
inline Signal32 slice(const Signal32& signal, int begin, int length)
{
    Signal32 result(signal.numChannels, length);
    for (int c = 0; c < signal.numChannels; ++c)
        std::copy_n(signal.getChannelPtr(c) + begin, length, result.getWriteChannelPtr(c));
    return result;
}

/** Calls process(begin, length) for one block after the other, whose lengths repeat as told. */
template <typename Lengths, typename Process>
void forEachBlock(int total, const Lengths& lengths, Process process)
{
    for (int begin = 0, step = 0; begin < total; ++step)
    {
        const int length =
            std::min(lengths[static_cast<std::size_t>(step) % std::size(lengths)], total - begin);
        process(begin, length);
        begin += length;
    }
}

/** The first signal.size() samples of the convolution, added to result. */
inline void addConvolution(std::span<const float> signal, std::span<const float> taps,
                           std::vector<double>& result)
{
    result.resize(signal.size());
    for (std::size_t k = 0; k < taps.size(); ++k)
        if (taps[k] != 0.0f)
            for (std::size_t i = k; i < signal.size(); ++i)
                result[i] += static_cast<double>(taps[k]) * static_cast<double>(signal[i - k]);
}

inline std::vector<double> convolve(std::span<const float> signal, std::span<const float> taps)
{
    std::vector<double> result;
    addConvolution(signal, taps, result);
    return result;
}

/** The largest distance of two sequences of one length; infinite if the lengths or a NaN set them apart. */
template <typename A, typename B>
double maxDifference(const A& a, const B& b)
{
    if (std::size(a) != std::size(b))
        return INFINITY;
    double result = 0.0;
    for (std::size_t i = 0; i < std::size(a); ++i)
    {
        const double difference = std::abs(static_cast<double>(a[i]) - static_cast<double>(b[i]));
        result = difference <= result ? result : std::isnan(difference) ? INFINITY : difference;
    }
    return result;
}

} // namespace vesk::audio::test
