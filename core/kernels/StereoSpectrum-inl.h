// Filtering of two real signals that share a complex spectrum. Compiled once for each instruction set, see
// VectorKernels.cpp.
//
// With z = left + j right, of M points, the symmetry of real signals gives both spectra back:
//
//   2 L[k] = Z[k] + conj Z[M-k],  2 R[k] = -j (Z[k] - conj Z[M-k])
//
// and the product goes the same way: W[k] = L'[k] + j R'[k], W[M-k] = conj L'[k] + j conj R'[k]. The bins k and
// M-k are so computed together.

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

template <class D>
HWY_INLINE ComplexVector<hn::VFromD<D>> load(D d, const ResponseSpectrum& response, std::size_t bin)
{
    return {hn::LoadU(d, response.re + bin), hn::LoadU(d, response.im + bin)};
}

template <class V>
HWY_INLINE ComplexVector<V> multiplyAdd(ComplexVector<V> a, ComplexVector<V> b, ComplexVector<V> sum)
{
    return {hn::NegMulAdd(a.im, b.im, hn::MulAdd(a.re, b.re, sum.re)),
            hn::MulAdd(a.im, b.re, hn::MulAdd(a.re, b.im, sum.im))};
}

/** A vector of bins from bin k on, k + lanes at most half, and their mirror images. */
template <bool crossed, class D>
HWY_INLINE void filterStereoBins(D d, std::span<const StereoTerm> terms, StereoSpectrum<float> w,
                                 std::size_t half, std::size_t k, bool accumulate)
{
    using V = hn::VFromD<D>;
    const std::size_t mirrored = 2 * half - k - (hn::Lanes(d) - 1);
    ComplexVector<V> newLeft{hn::Zero(d), hn::Zero(d)};
    auto newRight = newLeft;
    for (const auto& [z, filter] : terms)
    {
        const ComplexVector<V> a{hn::LoadU(d, z.re + k), hn::LoadU(d, z.im + k)};
        const ComplexVector<V> b{hn::Reverse(d, hn::LoadU(d, z.re + mirrored)),
                                 hn::Reverse(d, hn::LoadU(d, z.im + mirrored))};
        const ComplexVector<V> left{hn::Add(a.re, b.re), hn::Sub(a.im, b.im)};
        const ComplexVector<V> right{hn::Add(a.im, b.im), hn::Sub(b.re, a.re)};
        newLeft = multiplyAdd(left, load(d, filter.leftToLeft, k), newLeft);
        newRight = multiplyAdd(right, load(d, filter.rightToRight, k), newRight);
        if constexpr (crossed)
        {
            newLeft = multiplyAdd(right, load(d, filter.rightToLeft, k), newLeft);
            newRight = multiplyAdd(left, load(d, filter.leftToRight, k), newRight);
        }
    }

    ComplexVector<V> low{hn::Sub(newLeft.re, newRight.im), hn::Add(newLeft.im, newRight.re)};
    ComplexVector<V> high{hn::Reverse(d, hn::Add(newLeft.re, newRight.im)),
                          hn::Reverse(d, hn::Sub(newRight.re, newLeft.im))};
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
    const hn::ScalableTag<float> d;
    const hn::CappedTag<float, 1> single;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t k = 0;
    for (; k + lanes <= half; k += lanes)
        filterStereoBins<crossed>(d, terms, w, half, k, accumulate);
    for (; k < half; ++k)
        filterStereoBins<crossed>(single, terms, w, half, k, accumulate);

    // The middle bin is its own mirror image, and real in both signals and responses.
    float newLeft = accumulate ? w.re[half] : 0.0f;
    float newRight = accumulate ? w.im[half] : 0.0f;
    for (const auto& [z, filter] : terms)
    {
        const float left = 2.0f * z.re[half];
        const float right = 2.0f * z.im[half];
        newLeft += left * filter.leftToLeft.re[half];
        newRight += right * filter.rightToRight.re[half];
        if constexpr (crossed)
        {
            newLeft += right * filter.rightToLeft.re[half];
            newRight += left * filter.leftToRight.re[half];
        }
    }
    w.re[half] = newLeft;
    w.im[half] = newRight;
}

HWY_INLINE void filterStereo(std::span<const StereoTerm> terms, StereoSpectrum<float> w, std::size_t half,
                             bool accumulate)
{
    if (terms.front().filter.rightToLeft.re == nullptr)
        filterStereoSpectra<false>(terms, w, half, accumulate);
    else
        filterStereoSpectra<true>(terms, w, half, accumulate);
}

} // namespace HWY_NAMESPACE
} // namespace vesk::audio::kernels
HWY_AFTER_NAMESPACE();

#endif
