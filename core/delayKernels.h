/**
    Vector routines of a modulated delay line that holds its signal at twice the sample rate.

    Statuses and rules are those of kernels.h. Thread: reentrant.
*/
#pragma once

#include "core/kernels.h"

#include <cstddef>
#include <span>

namespace vesk::audio
{

/** Taps between which a half-band interpolator puts a new sample, four on either side. */
inline constexpr int halfBandTaps = 8;

/** Doubles the rate of n samples, by an interpolator that keeps the given samples as they are:

        dst[2 i]     = sum over m below 8 of taps[m] src[i - m]
        dst[2 i + 1] = src[i - 3]

    @param src  its 7 samples before the first are read too
    @param dst  2 n samples; not in place */
IppStatus upsampleByTwo_32f(const float* src, float* dst, int n, const float* taps);

/** Where a delay line of double rate is read. Output sample i reads at, counted from the line's oldest sample,

        ((delay + offsets[i]) sampleRate + i) 2

    in single precision, held within the line. A position that is not a number reads at 0. */
struct MovingRead
{
    const float* offsets; ///< seconds
    int samples;          ///< of the output
    float delay;          ///< seconds
    float sampleRate;     ///< Hz, of the output
    int lineLength;       ///< at least 2
};

/** Reads all lines at the same positions, by linear interpolation, each into the output of the same index.
    Fastest while the position moves by two from sample to sample, give or take a fraction. */
IppStatus readMoving_32f(const MovingRead& read, std::span<const float* const> lines,
                         std::span<float* const> outputs);

} // namespace vesk::audio
