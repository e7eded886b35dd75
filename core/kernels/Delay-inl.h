// The modulated delay line at double rate. Compiled once for each instruction set, see VectorKernels.cpp.

#if defined(AMBREL_DELAY_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef AMBREL_DELAY_INL_H
#undef AMBREL_DELAY_INL_H
#else
#define AMBREL_DELAY_INL_H
#endif

#include "hwy/highway.h"

#include <algorithm>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace vesk::audio::kernels
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

/** Distance of the sample that the interpolator keeps. */
inline constexpr std::size_t halfBandCentre = halfBandTaps / 2 - 1;

HWY_INLINE void upsampleByTwo(const float* src, float* dst, std::size_t n, const float* taps)
{
    const hn::ScalableTag<float> d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes)
    {
        const float* x = src + i;
        auto near = hn::Mul(hn::Set(d, taps[0]), hn::LoadU(d, x));
        auto far = hn::Mul(hn::Set(d, taps[1]), hn::LoadU(d, x - 1));
        for (std::size_t m = 2; m < halfBandTaps; m += 2)
        {
            near = hn::MulAdd(hn::Set(d, taps[m]), hn::LoadU(d, x - m), near);
            far = hn::MulAdd(hn::Set(d, taps[m + 1]), hn::LoadU(d, x - m - 1), far);
        }
        hn::StoreInterleaved2(hn::Add(near, far), hn::LoadU(d, x - halfBandCentre), d, dst + 2 * i);
    }
    for (; i < n; ++i)
    {
        const float* x = src + i;
        float sum = 0.0f;
        for (std::size_t m = 0; m < halfBandTaps; ++m)
            sum += taps[m] * *(x - m);
        dst[2 * i] = sum;
        dst[2 * i + 1] = *(x - halfBandCentre);
    }
}

/** Between lower and upper, at fraction of the way. */
HWY_INLINE float interpolate(float lower, float upper, float fraction)
{
    return fraction * upper + (1.0f - fraction) * lower;
}

HWY_INLINE void readMoving(const MovingRead& read, std::span<const float* const> lines,
                           std::span<float* const> outputs)
{
    const hn::CappedTag<float, 16> d;
    const hn::RebindToSigned<decltype(d)> integers;
    constexpr std::size_t lanes = hn::MaxLanes(d);

    const auto last = static_cast<std::int32_t>(read.lineLength) - 1;
    const auto samples = static_cast<std::size_t>(read.samples);
    const auto end = hn::Set(d, static_cast<float>(last));
    const auto one = hn::Set(d, 1.0f);
    for (std::size_t i = 0; i < samples; i += lanes)
    {
        const std::size_t count = std::min(lanes, samples - i);
        alignas(64) float padded[lanes] = {};
        const float* offsets = read.offsets + i;
        if (count < lanes)
        {
            std::copy_n(offsets, count, padded);
            offsets = padded;
        }

        // The line is long enough for every modulation; the limits stand for the rounding of its last
        // position, and for a modulation that is not a number.
        const auto time = hn::ConvertTo(d, hn::Iota(integers, static_cast<std::int32_t>(i)));
        const auto seconds = hn::Add(hn::Set(d, read.delay), hn::LoadU(d, offsets));
        const auto position =
            hn::Mul(hn::Add(hn::Mul(seconds, hn::Set(d, read.sampleRate)), time), hn::Set(d, 2.0f));
        const auto inside = hn::IfThenElseZero(hn::Gt(position, hn::Zero(d)), hn::Min(position, end));
        const auto indices = hn::Min(hn::ConvertTo(integers, inside), hn::Set(integers, last - 1));
        const auto fractions = hn::Sub(inside, hn::ConvertTo(d, indices));

        const std::int32_t first = hn::GetLane(indices);
        const auto steady = hn::ShiftLeft<1>(hn::Iota(integers, 0));
        if (count == lanes &&
            hn::AllTrue(integers, hn::Eq(indices, hn::Add(steady, hn::Set(integers, first)))))
        {
            for (std::size_t c = 0; c < lines.size(); ++c)
            {
                auto lower = hn::Zero(d);
                auto upper = hn::Zero(d);
                hn::LoadInterleaved2(d, lines[c] + first, lower, upper);
                hn::StoreU(hn::Add(hn::Mul(fractions, upper), hn::Mul(hn::Sub(one, fractions), lower)), d,
                           outputs[c] + i);
            }
            continue;
        }

        alignas(64) std::int32_t index[lanes];
        alignas(64) float fraction[lanes];
        hn::Store(indices, integers, index);
        hn::Store(fractions, d, fraction);
        for (std::size_t c = 0; c < lines.size(); ++c)
            for (std::size_t k = 0; k < count; ++k)
                outputs[c][i + k] = interpolate(lines[c][index[k]], lines[c][index[k] + 1], fraction[k]);
    }
}

} // namespace HWY_NAMESPACE
} // namespace vesk::audio::kernels
HWY_AFTER_NAMESPACE();

#endif
