// Filtering of two real signals that share a complex spectrum. Compiled once for each instruction set, see
// VectorKernels.cpp.
//
// With z = left + j right, of M points, the symmetry of real signals gives both spectra back:
//
//   2 L[k] = Z[k] + conj Z[M-k],  2 R[k] = -j (Z[k] - conj Z[M-k])
//
// and the product goes the way back: W[k] = L'[k] + j R'[k], W[M-k] = conj L'[k] + j conj R'[k].

#if defined(AMBREL_STEREO_SPECTRUM_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef AMBREL_STEREO_SPECTRUM_INL_H
#undef AMBREL_STEREO_SPECTRUM_INL_H
#else
#define AMBREL_STEREO_SPECTRUM_INL_H
#endif

#include "core/kernels/Transform-inl.h"

#include <span>

HWY_BEFORE_NAMESPACE();
namespace vesk::audio::kernels
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

// Where the parts of a block stand.
inline constexpr std::size_t partLength = separatedBlock;
inline constexpr std::size_t leftPart = 0;
inline constexpr std::size_t rightPart = 2 * partLength;

constexpr std::size_t getSeparatedIndex(std::size_t bin)
{
    return bin / partLength * 4 * partLength + bin % partLength;
}

/** The two values of the middle bin. */
constexpr std::size_t getMiddleIndex(std::size_t half)
{
    return getSeparatedIndex((half + partLength - 1) / partLength * partLength);
}

/** Calls run(d, k) for vectors of bins, k being the first one's. */
template <class Run>
HWY_INLINE void forBins(std::size_t half, Run run)
{
    const hn::CappedTag<float, partLength> d;
    const hn::CappedTag<float, 1> single;
    std::size_t k = 0;
    for (; k + hn::Lanes(d) <= half; k += hn::Lanes(d))
        run(d, k);
    for (; k < half; ++k)
        run(single, k);
}

template <class D>
HWY_INLINE ComplexVector<hn::VFromD<D>> loadPart(D d, const float* src)
{
    return {hn::Load(d, src), hn::Load(d, src + partLength)};
}

template <class D>
HWY_INLINE void separateStereoBins(D d, StereoSpectrum<const float> z, float* dst, std::size_t half,
                                   std::size_t k)
{
    using V = hn::VFromD<D>;
    const std::size_t mirrored = 2 * half - k - (hn::Lanes(d) - 1);
    const ComplexVector<V> a{hn::LoadU(d, z.re + k), hn::LoadU(d, z.im + k)};
    const ComplexVector<V> b{hn::Reverse(d, hn::LoadU(d, z.re + mirrored)),
                             hn::Reverse(d, hn::LoadU(d, z.im + mirrored))};
    float* left = dst + getSeparatedIndex(k) + leftPart;
    float* right = dst + getSeparatedIndex(k) + rightPart;
    hn::Store(hn::Add(a.re, b.re), d, left);
    hn::Store(hn::Sub(a.im, b.im), d, left + partLength);
    hn::Store(hn::Add(a.im, b.im), d, right);
    hn::Store(hn::Sub(b.re, a.re), d, right + partLength);
}

HWY_INLINE void separateStereo(StereoSpectrum<const float> z, float* dst, std::size_t half)
{
    forBins(half, [=](auto d, std::size_t k) HWY_ATTR { separateStereoBins(d, z, dst, half, k); });
    const std::size_t middle = getMiddleIndex(half);
    dst[middle] = 2.0f * z.re[half];
    dst[middle + 1] = 2.0f * z.im[half];
}

template <class V>
HWY_INLINE ComplexVector<V> multiplyAdd(ComplexVector<V> a, ComplexVector<V> b, ComplexVector<V> sum)
{
    return {hn::NegMulAdd(a.im, b.im, hn::MulAdd(a.re, b.re, sum.re)),
            hn::MulAdd(a.im, b.re, hn::MulAdd(a.re, b.im, sum.im))};
}

/** A vector of bins from bin k on, and their mirror images. */
template <bool crossed, class D>
HWY_INLINE void filterStereoBins(D d, std::span<const StereoTerm> terms, StereoSpectrum<float> w,
                                 std::size_t half, std::size_t k, bool accumulate)
{
    using V = hn::VFromD<D>;
    const std::size_t index = getSeparatedIndex(k);
    ComplexVector<V> newLeft{hn::Zero(d), hn::Zero(d)};
    auto newRight = newLeft;
    for (const auto& [src, toLeft, toRight] : terms)
    {
        const auto left = loadPart(d, src + index + leftPart);
        const auto right = loadPart(d, src + index + rightPart);
        newLeft = multiplyAdd(left, loadPart(d, toLeft + index + leftPart), newLeft);
        if constexpr (crossed)
        {
            newLeft = multiplyAdd(right, loadPart(d, toLeft + index + rightPart), newLeft);
            newRight = multiplyAdd(left, loadPart(d, toRight + index + leftPart), newRight);
            newRight = multiplyAdd(right, loadPart(d, toRight + index + rightPart), newRight);
        }
        else
            newRight = multiplyAdd(right, loadPart(d, toLeft + index + rightPart), newRight);
    }

    ComplexVector<V> low{hn::Sub(newLeft.re, newRight.im), hn::Add(newLeft.im, newRight.re)};
    ComplexVector<V> high{hn::Reverse(d, hn::Add(newLeft.re, newRight.im)),
                          hn::Reverse(d, hn::Sub(newRight.re, newLeft.im))};
    const std::size_t mirrored = 2 * half - k - (hn::Lanes(d) - 1);
    if (accumulate)
    {
        low = low + ComplexVector<V>{hn::LoadU(d, w.re + k), hn::LoadU(d, w.im + k)};
        high = high + ComplexVector<V>{hn::LoadU(d, w.re + mirrored), hn::LoadU(d, w.im + mirrored)};
    }
    hn::StoreU(low.re, d, w.re + k);
    hn::StoreU(low.im, d, w.im + k);
    hn::StoreU(high.re, d, w.re + mirrored);
    hn::StoreU(high.im, d, w.im + mirrored);
}

template <bool crossed>
HWY_INLINE void filterStereoSpectra(std::span<const StereoTerm> terms, StereoSpectrum<float> w,
                                    std::size_t half, bool accumulate)
{
    forBins(half, [=](auto d, std::size_t k) HWY_ATTR
            { filterStereoBins<crossed>(d, terms, w, half, k, accumulate); });

    // The middle bin is its own mirror image.
    const std::size_t middle = getMiddleIndex(half);
    float newLeft = accumulate ? w.re[half] : 0.0f;
    float newRight = accumulate ? w.im[half] : 0.0f;
    for (const auto& [src, toLeft, toRight] : terms)
    {
        const float left = src[middle];
        const float right = src[middle + 1];
        newLeft += left * toLeft[middle];
        if constexpr (crossed)
        {
            newLeft += right * toLeft[middle + 1];
            newRight += left * toRight[middle] + right * toRight[middle + 1];
        }
        else
            newRight += right * toLeft[middle + 1];
    }
    w.re[half] = newLeft;
    w.im[half] = newRight;
}

HWY_INLINE void filterStereo(std::span<const StereoTerm> terms, StereoSpectrum<float> w, std::size_t half,
                             bool accumulate)
{
    if (terms.front().toRight != nullptr)
        filterStereoSpectra<true>(terms, w, half, accumulate);
    else
        filterStereoSpectra<false>(terms, w, half, accumulate);
}

} // namespace HWY_NAMESPACE
} // namespace vesk::audio::kernels
HWY_AFTER_NAMESPACE();

#endif
