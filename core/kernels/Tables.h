/**
    Data that the transform, filter and random routines share with the code that sets them up.
*/
#pragma once

#include "core/kernels/KernelTable.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace vesk::audio
{

/** A direct-form filter; the taps follow in memory. */
struct FirSpec
{
    static constexpr std::uint32_t marker = 0x46495220;

    std::uint32_t magic;
    int tapsLength;

    /** The taps, then the taps from last to first. */
    const float* getTaps() const { return reinterpret_cast<const float*>(this + 1); }
    float* getTaps() { return reinterpret_cast<float*>(this + 1); }
};

} // namespace vesk::audio

namespace vesk::audio::kernels
{

/** Bytes of a cache line: tables and scratch start on one. */
inline constexpr std::size_t cacheLine = 64;

template <typename T>
T* alignToCacheLine(void* memory)
{
    const auto address = reinterpret_cast<std::uintptr_t>(memory);
    return reinterpret_cast<T*>((address + cacheLine - 1) / cacheLine * cacheLine);
}

//==============================================================================
// Transform

/** The radix of a pass over size points, a power of two of at least 4: eights as far as they go, after the fours
    without which a two would be left. */
constexpr std::size_t choosePassRadix(std::size_t size) { return std::countr_zero(size) % 3 == 0 ? 8 : 4; }

/** Tables for a complex transform of length points and the step from it to a real one of twice that length.

    A length of at least lanes^2 is split into rows = length / lanes points for each lane: every lane
    transforms its own subsequence (sample index modulo lanes), which needs no shuffles at all, and a last
    stage of lanes points across the lanes joins them. Shorter transforms are computed directly. */
struct FftTables
{
    std::size_t length; ///< complex points
    std::size_t lanes;  ///< 0: direct computation
    std::size_t rows;   ///< length / lanes

    /** For each pass, in order, for each butterfly p: cos and sin (of the negative angle) of w to the powers from 1 to
        the radix less one. The last pass has no entry, its factors are 1. */
    const float* passTwiddles;

    /** For each block of lanes rows, for each lane w from 1: lanes values of cos, then of sin, of
        -2 pi w k / length. */
    const float* joinTwiddles;

    /** cos and sin of -2 pi k / (2 length): for direct computation all k below 2 length, interleaved; else
        all k up to length / 2, in two arrays. */
    const float* realCosines;
    const float* realSines;
};

//==============================================================================
// Recursive filters

inline constexpr int largestRecursiveOrder = 64;

/** Transposed direct form II, with what the vector routines need to compute a vector of outputs at once. With
    delay values z and with the inputs x1, x2 and outputs y1, y2 before the vector:

        y[i] = sum over j <= i of h[i - j] x[j] + g0[i] z0 + g1[i] z1
             = sum over j <= i of h[i - j] x[j] + v1[i] x1 + v2[i] x2 + u1[i] y1 + u2[i] y2

    where h is the impulse response. The second form needs nothing of the previous vector but its last lanes,
    which keeps the chain from vector to vector short. */
template <typename T>
struct RecursiveFilter
{
    static constexpr std::size_t maxLanes = 16;
    using Lanes = std::array<T, maxLanes>;

    const KernelTable* kernels;
    int order;

    /** b0 ... b_order, then a0 ... a_order, divided by a0. */
    T* taps;
    T* delay;

    // Orders 1 and 2 only.

    alignas(cacheLine) std::array<Lanes, maxLanes> columns; ///< column j holds h[i - j]
    alignas(cacheLine) std::array<Lanes, 2> delayResponse;  ///< g0, g1
    alignas(cacheLine) std::array<Lanes, 2> inputResponse;  ///< v1, v2
    alignas(cacheLine) std::array<Lanes, 2> outputResponse; ///< u1, u2
};

} // namespace vesk::audio::kernels
