/**
    What the tests of the DSP blocks share: spectra by definition, and streams cut into uneven blocks.
*/
#pragma once

#include "tests/core/TestSignals.h"
#include "tests/support/AudioMeasures.h"

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

/** One stream out of a processor (a function of a block) that is fed the input in blocks from single samples to
    long ones. */
template <typename Process>
Signal32 processInCuts(const Signal32& input, Process process)
{
    constexpr int lengths[] = {1, 100, 7, 256, 33, 1, 999, 128};
    Signal32 output(input.numChannels, 0);
    for (std::size_t i = 0; output.numSamples < input.numSamples; ++i)
    {
        const int length = std::min(lengths[i % std::size(lengths)], input.numSamples - output.numSamples);
        output = Signal32::concatenate(output, process(slice(input, output.numSamples, length)));
    }
    return output;
}

} // namespace vesk::audio::test
