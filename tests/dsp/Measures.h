/**
    What the tests of the DSP blocks measure on their outputs, in double precision and from the definitions.
*/
#pragma once

#include "tests/core/TestSignals.h"

#include <complex>
#include <numbers>

namespace vesk::audio::test
{

/** The discrete Fourier transform of all samples at one frequency, in cycles per sample. */
inline std::complex<double> spectrumAt(std::span<const float> samples, double frequency)
{
    const auto step = std::polar(1.0, -2.0 * std::numbers::pi * frequency);
    std::complex<double> rotation = 1.0;
    std::complex<double> sum = 0.0;
    for (const float sample : samples)
    {
        sum += static_cast<double>(sample) * rotation;
        rotation *= step;
    }
    return sum;
}

/** Mean of the product of two sequences. */
inline double meanProduct(std::span<const float> a, std::span<const float> b)
{
    double sum = 0.0;
    for (std::size_t n = 0; n < a.size(); ++n)
        sum += static_cast<double>(a[n]) * static_cast<double>(b[n]);
    return sum / static_cast<double>(a.size());
}

inline double meanSquare(std::span<const float> samples) { return meanProduct(samples, samples); }

/** A signal of which only the first sample of each channel is not zero. */
inline Signal32 makeImpulse(int channels, int samples)
{
    Signal32 impulse(channels, samples, 0.0f);
    for (int c = 0; c < channels; ++c)
        impulse.getWriteChannelPtr(c)[0] = 1.0f;
    return impulse;
}

/** sin(2 pi frequency n), frequency in cycles per sample. */
inline Signal32 makeSine(int samples, double frequency)
{
    Signal32 sine(1, samples);
    for (int n = 0; n < samples; ++n)
        sine.getWriteChannelPtr(0)[n] = static_cast<float>(std::sin(2.0 * std::numbers::pi * frequency * n));
    return sine;
}

/** Block lengths that add up to samples, from single samples to long blocks. */
inline std::vector<int> makeUnevenCuts(int samples)
{
    constexpr int lengths[] = {1, 100, 7, 256, 33, 1, 999, 128};
    std::vector<int> cuts;
    for (std::size_t i = 0; samples > 0; ++i)
    {
        cuts.push_back(std::min(lengths[i % std::size(lengths)], samples));
        samples -= cuts.back();
    }
    return cuts;
}

/** One stream out of a processor (a function of a block) that is fed the input in uneven blocks. */
template <typename Process>
Signal32 processInCuts(const Signal32& input, Process process)
{
    Signal32 output(input.numChannels, 0);
    int position = 0;
    for (const int length : makeUnevenCuts(input.numSamples))
    {
        output = Signal32::concatenate(output, process(slice(input, position, length)));
        position += length;
    }
    return output;
}

} // namespace vesk::audio::test
