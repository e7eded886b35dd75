// Real Fourier transform. Compiled once for each instruction set, see VectorKernels.cpp.
//
// N real samples are read as N/2 complex points (even samples real, odd ones imaginary), transformed, and
// untangled into the spectrum of the real sequence. The inverse goes the same way back.

#if defined(AMBREL_REAL_TRANSFORM_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef AMBREL_REAL_TRANSFORM_INL_H
#undef AMBREL_REAL_TRANSFORM_INL_H
#else
#define AMBREL_REAL_TRANSFORM_INL_H
#endif

#include "core/kernels/Transform-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vesk::audio::kernels
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

//==============================================================================
// From the complex transform of N/2 points to the spectrum of N real samples, and back

/** X[k] = (Z[k] + conj Z[M-k]) / 2 - j/2 exp(-2 pi j k / N) (Z[k] - conj Z[M-k]), and X[M-k] likewise. */
template <class D>
HWY_INLINE void untangle(D d, const FftTables& tables, SplitResult<D> z, Complex* spectrum)
{
    using V = hn::VFromD<D>;
    const std::size_t length = tables.length;
    const std::size_t lanes = hn::Lanes(d);
    float* dst = asFloats(spectrum);
    const V half = hn::Set(d, 0.5f);

    // Half the length is a whole number of vectors. Its own bin is met from both sides, with the same result.
    for (std::size_t k = 1; k <= length / 2; k += lanes)
    {
        const std::size_t mirrored = length - k - lanes + 1;
        const ComplexVector<V> a{hn::LoadU(d, z.re + k), hn::LoadU(d, z.im + k)};
        const ComplexVector<V> b{hn::Reverse(d, hn::LoadU(d, z.re + mirrored)),
                                 hn::Neg(hn::Reverse(d, hn::LoadU(d, z.im + mirrored)))};
        const ComplexVector<V> factor{hn::LoadU(d, tables.realCosines + k),
                                      hn::LoadU(d, tables.realSines + k)};
        const auto even = a + b;
        const auto odd = timesMinusJ((a - b) * factor);
        const auto low = even + odd;
        const auto high = even - odd;
        hn::StoreInterleaved2(hn::Mul(half, low.re), hn::Mul(half, low.im), d, dst + 2 * k);
        hn::StoreInterleaved2(hn::Reverse(d, hn::Mul(half, high.re)),
                              hn::Neg(hn::Reverse(d, hn::Mul(half, high.im))), d, dst + 2 * mirrored);
    }

    const float re = z.re[0];
    const float im = z.im[0];
    spectrum[0] = Complex(re + im, 0.0f);
    spectrum[length] = Complex(re - im, 0.0f);
}

/** Z[k] = X[k] + conj X[M-k] + j exp(2 pi j k / N) (X[k] - conj X[M-k]), with exchanged parts, two arrays. */
template <class D>
HWY_INLINE void tangle(D d, const FftTables& tables, const Complex* spectrum, float* exchangedRe,
                       float* exchangedIm)
{
    using V = hn::VFromD<D>;
    const std::size_t length = tables.length;
    const std::size_t lanes = hn::Lanes(d);
    const float* src = asFloats(spectrum);

    // Half the length is a whole number of vectors. Its own bin is met from both sides, with the same result.
    for (std::size_t k = 1; k <= length / 2; k += lanes)
    {
        const std::size_t mirrored = length - k - lanes + 1;
        ComplexVector<V> a{hn::Zero(d), hn::Zero(d)};
        ComplexVector<V> b{hn::Zero(d), hn::Zero(d)};
        hn::LoadInterleaved2(d, src + 2 * k, a.re, a.im);
        hn::LoadInterleaved2(d, src + 2 * mirrored, b.re, b.im);
        b = {hn::Reverse(d, b.re), hn::Neg(hn::Reverse(d, b.im))};
        const ComplexVector<V> factor{hn::LoadU(d, tables.realCosines + k),
                                      hn::Neg(hn::LoadU(d, tables.realSines + k))};
        const auto even = a + b;
        const auto minusOdd = timesMinusJ((a - b) * factor);
        const auto low = even - minusOdd;
        const auto high = even + minusOdd;
        hn::StoreU(low.im, d, exchangedRe + k);
        hn::StoreU(low.re, d, exchangedIm + k);
        hn::StoreU(hn::Neg(hn::Reverse(d, high.im)), d, exchangedRe + mirrored);
        hn::StoreU(hn::Reverse(d, high.re), d, exchangedIm + mirrored);
    }

    const float dc = spectrum[0].real();
    const float nyquist = spectrum[length].real();
    exchangedIm[0] = dc + nyquist;
    exchangedRe[0] = dc - nyquist;
}

//==============================================================================
// Short transforms, by definition

HWY_INLINE void forwardDirect(const float* src, Complex* dst, const FftTables& tables, float* work)
{
    const std::size_t size = 2 * tables.length;
    const std::size_t mask = size - 1;
    for (std::size_t n = 0; n < size; ++n)
        work[n] = src[n];
    for (std::size_t k = 0; k <= tables.length; ++k)
    {
        float re = 0.0f;
        float im = 0.0f;
        for (std::size_t n = 0; n < size; ++n)
        {
            re += work[n] * tables.realCosines[(k * n) & mask];
            im += work[n] * tables.realSines[(k * n) & mask];
        }
        const bool isReal = k == 0 || k == tables.length;
        dst[k] = Complex(re, isReal ? 0.0f : im);
    }
}

HWY_INLINE void inverseDirect(const Complex* src, float* dst, const FftTables& tables, float* work)
{
    const std::size_t size = 2 * tables.length;
    const std::size_t mask = size - 1;
    for (std::size_t k = 0; k <= tables.length; ++k)
    {
        work[2 * k] = src[k].real();
        work[2 * k + 1] = src[k].imag();
    }
    for (std::size_t n = 0; n < size; ++n)
    {
        float sum = work[0] + (n % 2 == 0 ? work[size] : -work[size]);
        for (std::size_t k = 1; k < tables.length; ++k)
            sum += 2.0f * (work[2 * k] * tables.realCosines[(k * n) & mask] +
                           work[2 * k + 1] * tables.realSines[(k * n) & mask]);
        dst[n] = sum;
    }
}

//==============================================================================

template <std::size_t lanes>
HWY_INLINE void forwardVector(const float* src, Complex* dst, const FftTables& tables, float* work)
{
    const hn::CappedTag<float, lanes> d;
    using D = hn::CappedTag<float, lanes>;
    float* first = work;
    float* second = work + 2 * tables.length;
    const auto rows = transformRows(d, InterleavedSource<D>{src}, tables, first, second);
    float* free = rows.memory == first ? second : first;
    const SplitResult<D> z{free, free + tables.length};
    joinLanes<lanes>(d, rows, tables, z);
    untangle(d, tables, z, dst);
}

template <std::size_t lanes>
HWY_INLINE void inverseVector(const Complex* src, float* dst, const FftTables& tables, float* work)
{
    const hn::CappedTag<float, lanes> d;
    using D = hn::CappedTag<float, lanes>;
    float* first = work;
    float* second = work + 2 * tables.length;
    tangle(d, tables, src, second, second + tables.length);
    const auto rows = transformRows(d, SplitSource<D>{second, second + tables.length}, tables, first, second);
    joinLanes<lanes>(d, rows, tables, ExchangedInterleavedResult<D>{dst});
}

HWY_INLINE void forwardRealTransform(const float* src, Complex* dst, const FftTables& tables, float* work)
{
    switch (tables.lanes)
    {
#if HWY_MAX_BYTES >= 64
    case 16: return forwardVector<16>(src, dst, tables, work);
#endif
#if HWY_MAX_BYTES >= 32
    case 8: return forwardVector<8>(src, dst, tables, work);
#endif
    case 4: return forwardVector<4>(src, dst, tables, work);
    default: return forwardDirect(src, dst, tables, work);
    }
}

HWY_INLINE void inverseRealTransform(const Complex* src, float* dst, const FftTables& tables, float* work)
{
    switch (tables.lanes)
    {
#if HWY_MAX_BYTES >= 64
    case 16: return inverseVector<16>(src, dst, tables, work);
#endif
#if HWY_MAX_BYTES >= 32
    case 8: return inverseVector<8>(src, dst, tables, work);
#endif
    case 4: return inverseVector<4>(src, dst, tables, work);
    default: return inverseDirect(src, dst, tables, work);
    }
}

} // namespace HWY_NAMESPACE
} // namespace vesk::audio::kernels
HWY_AFTER_NAMESPACE();

#endif
