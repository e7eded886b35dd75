// Random numbers. Compiled once for each instruction set, see VectorKernels.cpp.
//
// Counter based: value i comes from mixing i with a key, so blocks can be made in any order and lanes are
// independent. The mixer is a multiply-xorshift permutation of 32 bits (constants found by Chris Wellons'
// search for low bias), applied twice with a key before each.

#if defined(AMBREL_RANDOM_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef AMBREL_RANDOM_INL_H
#undef AMBREL_RANDOM_INL_H
#else
#define AMBREL_RANDOM_INL_H
#endif

#include "hwy/contrib/math/math-inl.h"
#include "hwy/highway.h"

#include <numbers>

HWY_BEFORE_NAMESPACE();
namespace vesk::audio::kernels
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

template <class DU, class V>
HWY_INLINE V mixBits(DU d, V x)
{
    x = hn::Xor(x, hn::ShiftRight<16>(x));
    x = hn::Mul(x, hn::Set(d, 0x7feb352dU));
    x = hn::Xor(x, hn::ShiftRight<15>(x));
    x = hn::Mul(x, hn::Set(d, 0x846ca68bU));
    return hn::Xor(x, hn::ShiftRight<16>(x));
}

/** 32 random bits for each of the counters first, first + 1, ... */
template <class DU>
HWY_INLINE hn::VFromD<DU> randomBits(DU d, std::uint64_t first, std::uint64_t key)
{
    const auto lowKey = static_cast<std::uint32_t>(key);
    const auto highKey = static_cast<std::uint32_t>(key >> 32);
    // A block of counters never crosses a multiple of 2^32, so the upper half is common to all lanes.
    const auto upper = static_cast<std::uint32_t>(first >> 32) * 0x9e3779b9U;
    const auto counters = hn::Iota(d, static_cast<std::uint32_t>(first));
    const auto mixed = mixBits(d, hn::Xor(counters, hn::Set(d, lowKey)));
    return mixBits(d, hn::Xor(hn::Add(mixed, hn::Set(d, upper)), hn::Set(d, highKey)));
}

/** Uniform on 0 to 1, both ends excluded, in steps of 2^-24. */
template <class D, class VU>
HWY_INLINE hn::VFromD<D> toUnitInterval(D d, VU bits)
{
    const hn::RebindToSigned<D> integers;
    const auto values = hn::ConvertTo(d, hn::BitCast(integers, hn::ShiftRight<8>(bits)));
    return hn::Mul(hn::Add(values, hn::Set(d, 0.5f)), hn::Set(d, 1.0f / 16777216.0f));
}

inline constexpr std::size_t randomPairs = randomBlockLength / 2;

HWY_INLINE void uniformBlock(float* dst, std::uint64_t block, std::uint64_t key, float low, float high)
{
    const hn::CappedTag<float, randomPairs> d;
    const hn::RebindToUnsigned<decltype(d)> bits;
    for (std::size_t i = 0; i < randomBlockLength; i += hn::Lanes(d))
    {
        const auto unit = toUnitInterval(d, randomBits(bits, block * randomBlockLength + i, key));
        hn::StoreU(hn::MulAdd(unit, hn::Set(d, high - low), hn::Set(d, low)), d, dst + i);
    }
}

/** Box and Muller: sqrt(-2 ln u) times cos and sin of 2 pi v, u and v uniform. */
HWY_INLINE void gaussianBlock(float* dst, std::uint64_t block, std::uint64_t key, float mean,
                              float standardDeviation)
{
    const hn::CappedTag<float, randomPairs> d;
    const hn::RebindToUnsigned<decltype(d)> bits;
    const auto pi = hn::Set(d, std::numbers::pi_v<float>);
    for (std::size_t i = 0; i < randomPairs; i += hn::Lanes(d))
    {
        const std::uint64_t counter = block * randomBlockLength + i;
        const auto u = toUnitInterval(d, randomBits(bits, counter, key));
        const auto v = toUnitInterval(d, randomBits(bits, counter + randomPairs, key));
        const auto logarithm = hn::Log(d, u);
        const auto radius =
            hn::Mul(hn::Sqrt(hn::Mul(hn::Set(d, -2.0f), logarithm)), hn::Set(d, standardDeviation));
        // From -pi to pi, where the sine and the cosine are at their best.
        const auto angle = hn::Mul(hn::MulAdd(v, hn::Set(d, 2.0f), hn::Set(d, -1.0f)), pi);
        const auto offset = hn::Set(d, mean);
        hn::StoreInterleaved2(hn::MulAdd(radius, hn::Cos(d, angle), offset),
                              hn::MulAdd(radius, hn::Sin(d, angle), offset), d, dst + 2 * i);
    }
}

} // namespace HWY_NAMESPACE
} // namespace vesk::audio::kernels
HWY_AFTER_NAMESPACE();

#endif
