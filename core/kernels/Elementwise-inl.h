// Element-wise routines. Compiled once for each instruction set, see VectorKernels.cpp.

#if defined(AMBREL_ELEMENTWISE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef AMBREL_ELEMENTWISE_INL_H
#undef AMBREL_ELEMENTWISE_INL_H
#else
#define AMBREL_ELEMENTWISE_INL_H
#endif

#include "hwy/contrib/math/math-inl.h"
#include "hwy/highway.h"

#include <cmath>
#include <limits>
#include <numbers>

HWY_BEFORE_NAMESPACE();
namespace vesk::audio::kernels
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;
using Floats = hn::ScalableTag<float>;

/** Runs body on whole vectors, and on single lanes for what is left. The same expression serves both, so that
    an element's result does not depend on where in the array it stands. */
template <class D, class Body>
HWY_INLINE void forEach(D d, std::size_t n, const Body& body)
{
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes)
        body(d, i);
    const hn::CappedTag<hn::TFromD<D>, 1> single;
    for (; i < n; ++i)
        body(single, i);
}

HWY_INLINE void set32(float value, float* dst, std::size_t n)
{
    forEach(Floats(), n, [=](auto d, std::size_t i) HWY_ATTR { hn::StoreU(hn::Set(d, value), d, dst + i); });
}

HWY_INLINE void set64(double value, double* dst, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i)
        dst[i] = value;
}

HWY_INLINE void add(const float* a, const float* b, float* dst, std::size_t n)
{
    forEach(Floats(), n,
            [=](auto d, std::size_t i) HWY_ATTR
            { hn::StoreU(hn::Add(hn::LoadU(d, a + i), hn::LoadU(d, b + i)), d, dst + i); });
}

/** dst = b - a */
HWY_INLINE void subtract(const float* a, const float* b, float* dst, std::size_t n)
{
    forEach(Floats(), n,
            [=](auto d, std::size_t i) HWY_ATTR
            { hn::StoreU(hn::Sub(hn::LoadU(d, b + i), hn::LoadU(d, a + i)), d, dst + i); });
}

HWY_INLINE void multiply(const float* a, const float* b, float* dst, std::size_t n)
{
    forEach(Floats(), n,
            [=](auto d, std::size_t i) HWY_ATTR
            { hn::StoreU(hn::Mul(hn::LoadU(d, a + i), hn::LoadU(d, b + i)), d, dst + i); });
}

HWY_INLINE void scale(const float* src, float factor, float* dst, std::size_t n)
{
    forEach(Floats(), n,
            [=](auto d, std::size_t i) HWY_ATTR
            { hn::StoreU(hn::Mul(hn::LoadU(d, src + i), hn::Set(d, factor)), d, dst + i); });
}

HWY_INLINE bool divide(const float* divisor, const float* dividend, float* dst, std::size_t n)
{
    bool anyZero = false;
    forEach(Floats(), n,
            [=, &anyZero](auto d, std::size_t i) HWY_ATTR
            {
                const auto below = hn::LoadU(d, divisor + i);
                anyZero |= !hn::AllFalse(d, hn::Eq(below, hn::Zero(d)));
                hn::StoreU(hn::Div(hn::LoadU(d, dividend + i), below), d, dst + i);
            });
    return anyZero;
}

/** A comparison with what is not a number is false, so that this needs no case of its own. */
HWY_INLINE void copyBounded(const float* src, float limit, float* dst, std::size_t n)
{
    forEach(Floats(), n,
            [=](auto d, std::size_t i) HWY_ATTR
            {
                const auto value = hn::LoadU(d, src + i);
                const auto isWithin = hn::Le(hn::Abs(value), hn::Set(d, limit));
                hn::StoreU(hn::IfThenElseZero(isWithin, value), d, dst + i);
            });
}

HWY_INLINE float maximum(const float* src, std::size_t n)
{
    const Floats d;
    const std::size_t lanes = hn::Lanes(d);
    float result = -std::numeric_limits<float>::infinity();
    std::size_t i = 0;
    if (n >= lanes)
    {
        auto largest = hn::Set(d, result);
        for (; i + lanes <= n; i += lanes)
        {
            const auto values = hn::LoadU(d, src + i);
            largest = hn::IfThenElse(hn::Gt(values, largest), values, largest);
        }
        result = hn::GetLane(hn::MaxOfLanes(d, largest));
    }
    for (; i < n; ++i)
        result = src[i] > result ? src[i] : result;
    return result;
}

HWY_INLINE void threshold(const float* src, float* dst, std::size_t n, float low, float lowValue, float high,
                          float highValue)
{
    forEach(Floats(), n,
            [=](auto d, std::size_t i) HWY_ATTR
            {
                const auto value = hn::LoadU(d, src + i);
                const auto raised =
                    hn::IfThenElse(hn::Lt(value, hn::Set(d, low)), hn::Set(d, lowValue), value);
                const auto limited =
                    hn::IfThenElse(hn::Gt(value, hn::Set(d, high)), hn::Set(d, highValue), raised);
                hn::StoreU(limited, d, dst + i);
            });
}

// The compiler vectorises plain conversions by itself; each instruction set compiles its own.

HWY_INLINE void toDouble(const float* src, double* dst, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i)
        dst[i] = static_cast<double>(src[i]);
}

HWY_INLINE void toFloat(const double* src, float* dst, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i)
        dst[i] = static_cast<float>(src[i]);
}

//==============================================================================
// Complex

HWY_INLINE const float* asFloats(const Complex* values) { return reinterpret_cast<const float*>(values); }
HWY_INLINE float* asFloats(Complex* values) { return reinterpret_cast<float*>(values); }

/** a * b on interleaved pairs, plus c if it accumulates. */
template <class D, class V>
HWY_INLINE V multiplyPairs(D, V a, V b, V addend)
{
    const auto re = hn::DupEven(a);
    const auto im = hn::DupOdd(a);
    const auto swapped = hn::Reverse2(D(), b);
    // even: re b.re - im b.im; odd: re b.im + im b.re
    return hn::Add(addend, hn::OddEven(hn::MulAdd(re, b, hn::Mul(im, swapped)),
                                       hn::NegMulAdd(im, swapped, hn::Mul(re, b))));
}

template <bool accumulate>
HWY_INLINE void productComplex(const Complex* a, const Complex* b, Complex* dst, std::size_t n)
{
    const Floats d;
    const std::size_t pairs = hn::Lanes(d) / 2;
    std::size_t i = 0;
    for (; i + pairs <= n; i += pairs)
    {
        auto* target = asFloats(dst + i);
        const auto addend = accumulate ? hn::LoadU(d, target) : hn::Zero(d);
        hn::StoreU(multiplyPairs(d, hn::LoadU(d, asFloats(a + i)), hn::LoadU(d, asFloats(b + i)), addend), d,
                   target);
    }
    for (; i < n; ++i)
    {
        const float re = a[i].real() * b[i].real() - a[i].imag() * b[i].imag();
        const float im = a[i].real() * b[i].imag() + a[i].imag() * b[i].real();
        dst[i] = accumulate ? dst[i] + Complex(re, im) : Complex(re, im);
    }
}

HWY_INLINE void multiplyComplex(const Complex* a, const Complex* b, Complex* dst, std::size_t n)
{
    productComplex<false>(a, b, dst, n);
}

HWY_INLINE void addProductComplex(const Complex* a, const Complex* b, Complex* accumulator, std::size_t n)
{
    productComplex<true>(a, b, accumulator, n);
}

/** Beyond this the vector sine and cosine lose accuracy. */
inline constexpr float largestVectorPhase = 30000.0f;

HWY_INLINE void polarToCartesian(const float* magnitude, const float* phase, Complex* dst, std::size_t n)
{
    const Floats d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes)
    {
        const auto angle = hn::LoadU(d, phase + i);
        if (!hn::AllTrue(d, hn::Lt(hn::Abs(angle), hn::Set(d, largestVectorPhase))))
        {
            for (std::size_t k = i; k < i + lanes; ++k)
                dst[k] = Complex(magnitude[k] * std::cos(phase[k]), magnitude[k] * std::sin(phase[k]));
            continue;
        }
        const auto radius = hn::LoadU(d, magnitude + i);
        hn::StoreInterleaved2(hn::Mul(radius, hn::Cos(d, angle)), hn::Mul(radius, hn::Sin(d, angle)), d,
                              asFloats(dst + i));
    }
    for (; i < n; ++i)
        dst[i] = Complex(magnitude[i] * std::cos(phase[i]), magnitude[i] * std::sin(phase[i]));
}

HWY_INLINE void phase(const Complex* src, float* dst, std::size_t n)
{
    const Floats d;
    const std::size_t lanes = hn::Lanes(d);
    const auto halfPi = hn::Set(d, std::numbers::pi_v<float> / 2);
    const auto pi = hn::Set(d, std::numbers::pi_v<float>);
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes)
    {
        auto re = hn::Zero(d);
        auto im = hn::Zero(d);
        hn::LoadInterleaved2(d, asFloats(src + i), re, im);

        // The arc tangent of the smaller over the larger, then unfolded by octant. 0/0 reads as 0.
        const auto absRe = hn::Abs(re);
        const auto absIm = hn::Abs(im);
        const auto isSteep = hn::Gt(absIm, absRe);
        const auto larger = hn::Max(absRe, absIm);
        const auto smaller = hn::Min(absRe, absIm);
        const auto isZero = hn::Eq(larger, hn::Zero(d));
        const auto ratio = hn::IfThenZeroElse(isZero, hn::Div(smaller, larger));
        auto angle = hn::Atan(d, ratio);
        angle = hn::IfThenElse(isSteep, hn::Sub(halfPi, angle), angle);
        const hn::RebindToSigned<Floats> bits;
        const auto isNegative = hn::RebindMask(d, hn::Lt(hn::BitCast(bits, re), hn::Zero(bits)));
        angle = hn::IfThenElse(isNegative, hn::Sub(pi, angle), angle);
        hn::StoreU(hn::CopySign(angle, im), d, dst + i);
    }
    for (; i < n; ++i)
        dst[i] = std::atan2(src[i].imag(), src[i].real());
}

HWY_INLINE void interleave(const float* re, const float* im, Complex* dst, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i)
        dst[i] = Complex(re[i], im == nullptr ? 0.0f : im[i]);
}

} // namespace HWY_NAMESPACE
} // namespace vesk::audio::kernels
HWY_AFTER_NAMESPACE();

#endif
