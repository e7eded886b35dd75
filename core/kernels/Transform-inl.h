// Complex Fourier transform. Compiled once for each instruction set, see VectorKernels.cpp.
//
// A transform of M points on vectors of W lanes goes in three steps:
//
//   1. Lane w transforms the M/W points whose index is w modulo W, by a self-sorting scheme
//      (Stockham) of radix 8 and 4. All lanes do the same with the same factors, so there is nothing to shuffle.
//   2. Blocks of W rows are transposed and multiplied by exp(-2 pi j w k / M).
//   3. A transform of W points across what were the lanes, again vertical, gives rows k, k + M/W, ...
//
// The inverse is the forward transform with real and imaginary parts exchanged on both sides.
//
// During step 1 the points lie as pairs of vectors (W real parts, then W imaginary parts), so that each pass
// reads and writes as few streams as possible.

#if defined(AMBREL_TRANSFORM_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef AMBREL_TRANSFORM_INL_H
#undef AMBREL_TRANSFORM_INL_H
#else
#define AMBREL_TRANSFORM_INL_H
#endif

#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace vesk::audio::kernels
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

/** A vector of complex numbers. */
template <class V>
struct ComplexVector
{
    V re, im;
};

template <class V>
HWY_INLINE ComplexVector<V> operator+(ComplexVector<V> a, ComplexVector<V> b)
{
    return {hn::Add(a.re, b.re), hn::Add(a.im, b.im)};
}

template <class V>
HWY_INLINE ComplexVector<V> operator-(ComplexVector<V> a, ComplexVector<V> b)
{
    return {hn::Sub(a.re, b.re), hn::Sub(a.im, b.im)};
}

template <class V>
HWY_INLINE ComplexVector<V> operator*(ComplexVector<V> a, ComplexVector<V> b)
{
    return {hn::NegMulAdd(a.im, b.im, hn::Mul(a.re, b.re)), hn::MulAdd(a.re, b.im, hn::Mul(a.im, b.re))};
}

/** -j a */
template <class V>
HWY_INLINE ComplexVector<V> timesMinusJ(ComplexVector<V> a)
{
    return {a.im, hn::Neg(a.re)};
}

template <class D>
HWY_INLINE ComplexVector<hn::VFromD<D>> broadcast(D d, const float* factor)
{
    return {hn::Set(d, factor[0]), hn::Set(d, factor[1])};
}

//==============================================================================
// Where the points of a pass come from and go to

/** Pairs of vectors in aligned scratch memory. */
template <class D>
struct PairedPoints
{
    float* memory;

    HWY_INLINE ComplexVector<hn::VFromD<D>> load(std::size_t index) const
    {
        const D d;
        const float* p = memory + 2 * hn::Lanes(d) * index;
        return {hn::Load(d, p), hn::Load(d, p + hn::Lanes(d))};
    }

    HWY_INLINE void store(std::size_t index, ComplexVector<hn::VFromD<D>> value) const
    {
        const D d;
        float* p = memory + 2 * hn::Lanes(d) * index;
        hn::Store(value.re, d, p);
        hn::Store(value.im, d, p + hn::Lanes(d));
    }
};

/** Interleaved real and imaginary parts in memory of the caller. */
template <class D>
struct InterleavedSource
{
    const float* memory;

    HWY_INLINE ComplexVector<hn::VFromD<D>> load(std::size_t index) const
    {
        const D d;
        ComplexVector<hn::VFromD<D>> value{hn::Zero(d), hn::Zero(d)};
        hn::LoadInterleaved2(d, memory + 2 * hn::Lanes(d) * index, value.re, value.im);
        return value;
    }
};

/** Points in two arrays. */
template <class D>
struct SplitSource
{
    const float* re;
    const float* im;

    HWY_INLINE ComplexVector<hn::VFromD<D>> load(std::size_t index) const
    {
        const D d;
        const std::size_t offset = hn::Lanes(d) * index;
        return {hn::LoadU(d, re + offset), hn::LoadU(d, im + offset)};
    }
};

/** Result in two arrays; offset counts points. */
template <class D>
struct SplitResult
{
    float* re;
    float* im;

    HWY_INLINE void store(std::size_t offset, ComplexVector<hn::VFromD<D>> value) const
    {
        const D d;
        hn::StoreU(value.re, d, re + offset);
        hn::StoreU(value.im, d, im + offset);
    }
};

/** Result of an inverse transform, interleaved with the parts exchanged back. */
template <class D>
struct ExchangedInterleavedResult
{
    float* memory;

    HWY_INLINE void store(std::size_t offset, ComplexVector<hn::VFromD<D>> value) const
    {
        hn::StoreInterleaved2(value.im, value.re, D(), memory + 2 * offset);
    }
};

//==============================================================================
// Transforms of a few points, in registers

/** Of four points, in natural order. */
template <class V>
HWY_INLINE void butterfly4(ComplexVector<V>& a, ComplexVector<V>& b, ComplexVector<V>& c, ComplexVector<V>& d)
{
    const auto sumAC = a + c;
    const auto sumBD = b + d;
    const auto differenceAC = a - c;
    const auto differenceBD = timesMinusJ(b - d);
    a = sumAC + sumBD;
    b = differenceAC + differenceBD;
    c = sumAC - sumBD;
    d = differenceAC - differenceBD;
}

/** cos and sin of -2 pi k / 16 */
inline constexpr float sixteenths[8][2] = {{1.0f, -0.0f},
                                           {0.923879533f, -0.382683432f},
                                           {0.707106781f, -0.707106781f},
                                           {0.382683432f, -0.923879533f},
                                           {0.0f, -1.0f},
                                           {-0.382683432f, -0.923879533f},
                                           {-0.707106781f, -0.707106781f},
                                           {-0.923879533f, -0.382683432f}};

/** exp(-2 pi j k / 16) a, for k from 0 to 9 */
template <std::size_t k, class D, class V>
HWY_INLINE ComplexVector<V> timesSixteenth(D d, ComplexVector<V> a)
{
    if constexpr (k == 0)
        return a;
    else if constexpr (k == 4)
        return timesMinusJ(a);
    else if constexpr (k == 2)
    {
        const V half = hn::Set(d, sixteenths[2][0]);
        return {hn::Mul(half, hn::Add(a.re, a.im)), hn::Mul(half, hn::Sub(a.im, a.re))};
    }
    else if constexpr (k == 6)
    {
        const V half = hn::Set(d, sixteenths[2][0]);
        return {hn::Mul(half, hn::Sub(a.im, a.re)), hn::Neg(hn::Mul(half, hn::Add(a.re, a.im)))};
    }
    else if constexpr (k == 9)
        return a * ComplexVector<V>{hn::Set(d, -sixteenths[1][0]), hn::Set(d, -sixteenths[1][1])};
    else
        return a * broadcast(d, sixteenths[k]);
}

/** Transform of lanes points in registers, in natural order. */
template <std::size_t lanes, class D, class C>
HWY_INLINE void transformAcross(D d, C* x)
{
    if constexpr (lanes == 4)
    {
        butterfly4(x[0], x[1], x[2], x[3]);
    }
    else if constexpr (lanes == 8)
    {
        C even[4] = {x[0], x[2], x[4], x[6]};
        C odd[4] = {x[1], x[3], x[5], x[7]};
        transformAcross<4>(d, even);
        transformAcross<4>(d, odd);
        odd[1] = timesSixteenth<2>(d, odd[1]);
        odd[2] = timesSixteenth<4>(d, odd[2]);
        odd[3] = timesSixteenth<6>(d, odd[3]);
        for (std::size_t i = 0; i < 4; ++i)
        {
            x[i] = even[i] + odd[i];
            x[i + 4] = even[i] - odd[i];
        }
    }
    else
    {
        // Four by four: columns of points 4 apart, factors, then rows.
        for (std::size_t i = 0; i < 4; ++i)
            butterfly4(x[i], x[i + 4], x[i + 8], x[i + 12]);
        x[5] = timesSixteenth<1>(d, x[5]);
        x[9] = timesSixteenth<2>(d, x[9]);
        x[13] = timesSixteenth<3>(d, x[13]);
        x[6] = timesSixteenth<2>(d, x[6]);
        x[10] = timesSixteenth<4>(d, x[10]);
        x[14] = timesSixteenth<6>(d, x[14]);
        x[7] = timesSixteenth<3>(d, x[7]);
        x[11] = timesSixteenth<6>(d, x[11]);
        x[15] = timesSixteenth<9>(d, x[15]);
        for (std::size_t row = 0; row < 4; ++row)
            butterfly4(x[4 * row], x[4 * row + 1], x[4 * row + 2], x[4 * row + 3]);
        for (std::size_t i = 0; i < 4; ++i)
            for (std::size_t k = i + 1; k < 4; ++k)
                std::swap(x[4 * i + k], x[4 * k + i]);
    }
}

//==============================================================================
// Step 1: Stockham passes over rows, decimation in frequency

/** Butterflies of radix points that lie stride * (size / radix) apart, times the factors of the next passes. */
template <std::size_t radix, class D, class Source>
HWY_INLINE void radixPass(D d, const Source& source, PairedPoints<D> target, std::size_t size,
                          std::size_t stride, const float* twiddles)
{
    using C = ComplexVector<hn::VFromD<D>>;
    const std::size_t part = size / radix;
    for (std::size_t p = 0; p < part; ++p)
    {
        C factors[radix];
        for (std::size_t k = 1; k < radix; ++k, twiddles += 2)
            factors[k] = broadcast(d, twiddles);
        for (std::size_t q = 0; q < stride; ++q)
        {
            C points[radix];
            for (std::size_t k = 0; k < radix; ++k)
                points[k] = source.load(q + stride * (p + k * part));
            transformAcross<radix>(d, points);
            target.store(q + stride * radix * p, points[0]);
            for (std::size_t k = 1; k < radix; ++k)
                target.store(q + stride * (radix * p + k), points[k] * factors[k]);
        }
    }
}

/** The last pass: a single butterfly for each column, all factors 1. */
template <std::size_t radix, class D, class Source>
HWY_INLINE void lastPass(D d, const Source& source, PairedPoints<D> target, std::size_t stride)
{
    for (std::size_t q = 0; q < stride; ++q)
    {
        ComplexVector<hn::VFromD<D>> points[radix];
        for (std::size_t k = 0; k < radix; ++k)
            points[k] = source.load(q + stride * k);
        transformAcross<radix>(d, points);
        for (std::size_t k = 0; k < radix; ++k)
            target.store(q + stride * k, points[k]);
    }
}

template <class D, class Source>
HWY_INLINE void runPass(D d, const Source& source, PairedPoints<D> target, std::size_t size,
                        std::size_t stride, const float* twiddles)
{
    if (size == 4)
        lastPass<4>(d, source, target, stride);
    else if (size == 8)
        lastPass<8>(d, source, target, stride);
    else if (choosePassRadix(size) == 4)
        radixPass<4>(d, source, target, size, stride, twiddles);
    else
        radixPass<8>(d, source, target, size, stride, twiddles);
}

/** All passes; returns which of the two scratch areas holds the rows in natural order. */
template <class D, class Source>
HWY_INLINE PairedPoints<D> transformRows(D d, const Source& source, const FftTables& tables, float* first,
                                         float* second)
{
    const float* twiddles = tables.passTwiddles;
    std::size_t size = tables.rows;
    std::size_t stride = 1;
    PairedPoints<D> target{first};
    PairedPoints<D> other{second};

    runPass(d, source, target, size, stride, twiddles);
    for (auto radix = choosePassRadix(size); radix < size; radix = choosePassRadix(size))
    {
        twiddles += 2 * (radix - 1) * (size / radix);
        size /= radix;
        stride *= radix;
        runPass(d, target, other, size, stride, twiddles);
        std::swap(target, other);
    }
    return target;
}

//==============================================================================
// Steps 2 and 3: joining the lanes

/** Transposes 4 rows within each 128-bit block. */
template <class D, class V>
HWY_INLINE void transposeWithinBlocks(D d, V& r0, V& r1, V& r2, V& r3)
{
    const hn::Repartition<std::uint64_t, D> pairs;
    const auto low01 = hn::BitCast(pairs, hn::InterleaveLower(d, r0, r1));
    const auto high01 = hn::BitCast(pairs, hn::InterleaveUpper(d, r0, r1));
    const auto low23 = hn::BitCast(pairs, hn::InterleaveLower(d, r2, r3));
    const auto high23 = hn::BitCast(pairs, hn::InterleaveUpper(d, r2, r3));
    r0 = hn::BitCast(d, hn::InterleaveLower(pairs, low01, low23));
    r1 = hn::BitCast(d, hn::InterleaveUpper(pairs, low01, low23));
    r2 = hn::BitCast(d, hn::InterleaveLower(pairs, high01, high23));
    r3 = hn::BitCast(d, hn::InterleaveUpper(pairs, high01, high23));
}

template <std::size_t lanes, class D, class V>
HWY_INLINE void transpose(D d, V* rows)
{
    for (std::size_t group = 0; group < lanes; group += 4)
        transposeWithinBlocks(d, rows[group], rows[group + 1], rows[group + 2], rows[group + 3]);

    if constexpr (lanes == 8)
    {
        for (std::size_t i = 0; i < 4; ++i)
        {
            const V low = rows[i];
            const V high = rows[i + 4];
            rows[i] = hn::ConcatLowerLower(d, high, low);
            rows[i + 4] = hn::ConcatUpperUpper(d, high, low);
        }
    }
    if constexpr (lanes == 16)
    {
        for (std::size_t i = 0; i < 4; ++i)
        {
            const V a = rows[i];
            const V b = rows[i + 4];
            const V c = rows[i + 8];
            const V e = rows[i + 12];
            const V lowAC = hn::ConcatLowerLower(d, c, a);
            const V lowBD = hn::ConcatLowerLower(d, e, b);
            const V highAC = hn::ConcatUpperUpper(d, c, a);
            const V highBD = hn::ConcatUpperUpper(d, e, b);
            rows[i] = hn::OddEvenBlocks(hn::SwapAdjacentBlocks(lowBD), lowAC);
            rows[i + 4] = hn::OddEvenBlocks(lowBD, hn::SwapAdjacentBlocks(lowAC));
            rows[i + 8] = hn::OddEvenBlocks(hn::SwapAdjacentBlocks(highBD), highAC);
            rows[i + 12] = hn::OddEvenBlocks(highBD, hn::SwapAdjacentBlocks(highAC));
        }
    }
}

template <std::size_t lanes, class D, class Result>
HWY_INLINE void joinLanes(D d, PairedPoints<D> rows, const FftTables& tables, const Result& result)
{
    using V = hn::VFromD<D>;
    const float* twiddles = tables.joinTwiddles;
    for (std::size_t k = 0; k < tables.rows; k += lanes)
    {
        V re[lanes];
        V im[lanes];
        for (std::size_t i = 0; i < lanes; ++i)
        {
            const auto value = rows.load(k + i);
            re[i] = value.re;
            im[i] = value.im;
        }
        transpose<lanes>(d, re);
        transpose<lanes>(d, im);

        ComplexVector<V> points[lanes];
        points[0] = {re[0], im[0]};
        for (std::size_t w = 1; w < lanes; ++w)
        {
            const ComplexVector<V> factor{hn::Load(d, twiddles), hn::Load(d, twiddles + lanes)};
            points[w] = ComplexVector<V>{re[w], im[w]} * factor;
            twiddles += 2 * lanes;
        }
        transformAcross<lanes>(d, points);
        for (std::size_t q = 0; q < lanes; ++q)
            result.store(k + tables.rows * q, points[q]);
    }
}

//==============================================================================

HWY_INLINE void complexDirect(const float* srcRe, const float* srcIm, float* dstRe, float* dstIm,
                              const FftTables& tables, float* work)
{
    const std::size_t size = tables.length;
    const std::size_t mask = 2 * size - 1; // the tables go in steps of half a bin
    for (std::size_t n = 0; n < size; ++n)
    {
        work[2 * n] = srcRe[n];
        work[2 * n + 1] = srcIm[n];
    }
    for (std::size_t k = 0; k < size; ++k)
    {
        float re = 0.0f;
        float im = 0.0f;
        for (std::size_t n = 0; n < size; ++n)
        {
            const float cosine = tables.realCosines[(2 * k * n) & mask];
            const float sine = tables.realSines[(2 * k * n) & mask];
            re += work[2 * n] * cosine - work[2 * n + 1] * sine;
            im += work[2 * n] * sine + work[2 * n + 1] * cosine;
        }
        dstRe[k] = re;
        dstIm[k] = im;
    }
}

template <std::size_t lanes>
HWY_INLINE void complexVector(const float* srcRe, const float* srcIm, float* dstRe, float* dstIm,
                              const FftTables& tables, float* work)
{
    const hn::CappedTag<float, lanes> d;
    using D = hn::CappedTag<float, lanes>;
    const auto rows = transformRows(d, SplitSource<D>{srcRe, srcIm}, tables, work, work + 2 * tables.length);
    joinLanes<lanes>(d, rows, tables, SplitResult<D>{dstRe, dstIm});
}

HWY_INLINE void complexTransform(const float* srcRe, const float* srcIm, float* dstRe, float* dstIm,
                                 const FftTables& tables, float* work)
{
    switch (tables.lanes)
    {
#if HWY_MAX_BYTES >= 64
    case 16: return complexVector<16>(srcRe, srcIm, dstRe, dstIm, tables, work);
#endif
#if HWY_MAX_BYTES >= 32
    case 8: return complexVector<8>(srcRe, srcIm, dstRe, dstIm, tables, work);
#endif
    case 4: return complexVector<4>(srcRe, srcIm, dstRe, dstIm, tables, work);
    default: return complexDirect(srcRe, srcIm, dstRe, dstIm, tables, work);
    }
}

} // namespace HWY_NAMESPACE
} // namespace vesk::audio::kernels
HWY_AFTER_NAMESPACE();

#endif
