/**
    What the tests of the DSP blocks share: spectra by definition, and streams cut into blocks.
*/
#pragma once

#include "tests/core/TestSignals.h"
#include "tests/support/AudioMeasures.h"

#include <gtest/gtest.h>

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

/** One stream out of a processor (a function of a block) that is fed the input in blocks of the given lengths, over
    and over. */
template <typename Process>
Signal32 processInBlocks(const Signal32& input, const std::vector<int>& lengths, Process process)
{
    Signal32 output;
    int position = 0;
    for (std::size_t k = 0; position < input.numSamples; ++k)
    {
        const int length = std::min(lengths[k % lengths.size()], input.numSamples - position);
        const Signal32 block = process(slice(input, position, length));
        EXPECT_EQ(block.numSamples, length);
        if (position == 0)
            output = Signal32(block.numChannels, input.numSamples);
        for (int c = 0; c < block.numChannels; ++c)
            std::copy_n(block.getChannelPtr(c), length, output.getWriteChannelPtr(c) + position);
        position += length;
    }
    return output;
}

/** In blocks from single samples to long ones. */
template <typename Process>
Signal32 processInCuts(const Signal32& input, Process process)
{
    return processInBlocks(input, {1, 100, 7, 256, 33, 1, 999, 128}, process);
}

} // namespace vesk::audio::test
