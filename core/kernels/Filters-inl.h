// FIR and IIR filters. Compiled once for each instruction set, see VectorKernels.cpp.

#if defined(AMBREL_FILTERS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef AMBREL_FILTERS_INL_H
#undef AMBREL_FILTERS_INL_H
#else
#define AMBREL_FILTERS_INL_H
#endif

#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace vesk::audio::kernels
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

//==============================================================================
// FIR

/** numVectors vectors of outputs at once, from index i on: each tap is broadcast once and meets that many
    unaligned loads. With few vectors the taps take turns in several sums each, so that enough additions are
    under way to hide their latency. */
template <std::size_t numVectors, std::size_t sumsEach, class D>
HWY_INLINE void firVectors(D d, const FirInput* inputs, std::size_t count, std::size_t i, float* dst)
{
    const std::size_t lanes = hn::Lanes(d);
    hn::VFromD<D> sums[sumsEach][numVectors];
    for (auto& turn : sums)
        for (auto& sum : turn)
            sum = hn::Zero(d);

    for (std::size_t input = 0; input < count; ++input)
    {
        const float* taps = inputs[input].spec->getTaps();
        const auto tapsLength = static_cast<std::size_t>(inputs[input].spec->tapsLength);
        const auto addTap = [&](std::size_t k, hn::VFromD<D>* turn)
        {
            const auto tap = hn::Set(d, taps[k]);
            const float* delayed = inputs[input].block + i - k;
            for (std::size_t v = 0; v < numVectors; ++v)
                turn[v] = hn::MulAdd(tap, hn::LoadU(d, delayed + v * lanes), turn[v]);
        };
        std::size_t k = 0;
        for (; k + sumsEach <= tapsLength; k += sumsEach)
            for (std::size_t turn = 0; turn < sumsEach; ++turn)
                addTap(k + turn, sums[turn]);
        for (; k < tapsLength; ++k)
            addTap(k, sums[0]);
    }

    for (std::size_t v = 0; v < numVectors; ++v)
    {
        auto sum = sums[0][v];
        for (std::size_t turn = 1; turn < sumsEach; ++turn)
            sum = hn::Add(sum, sums[turn][v]);
        hn::StoreU(sum, d, dst + i + v * lanes);
    }
}

/** A single output, along the taps. */
template <class D>
HWY_INLINE float firSingle(D d, const FirInput* inputs, std::size_t count, std::size_t i)
{
    const std::size_t lanes = hn::Lanes(d);
    float total = 0.0f;
    for (std::size_t input = 0; input < count; ++input)
    {
        const auto tapsLength = static_cast<std::size_t>(inputs[input].spec->tapsLength);
        const float* reversedTaps = inputs[input].spec->getTaps() + tapsLength;
        const float* oldest = inputs[input].block + i - (tapsLength - 1);
        auto sums = hn::Zero(d);
        std::size_t k = 0;
        for (; k + lanes <= tapsLength; k += lanes)
            sums = hn::MulAdd(hn::LoadU(d, reversedTaps + k), hn::LoadU(d, oldest + k), sums);
        float sum = hn::GetLane(hn::SumOfLanes(d, sums));
        for (; k < tapsLength; ++k)
            sum += reversedTaps[k] * oldest[k];
        total += sum;
    }
    return total;
}

HWY_INLINE void fir(const FirInput* inputs, std::size_t count, float* dst, std::size_t n)
{
    const hn::ScalableTag<float> d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + 8 * lanes <= n; i += 8 * lanes)
        firVectors<8, 1>(d, inputs, count, i, dst);
    for (; i + 4 * lanes <= n; i += 4 * lanes)
        firVectors<4, 2>(d, inputs, count, i, dst);
    for (; i + lanes <= n; i += lanes)
        firVectors<1, 4>(d, inputs, count, i, dst);
    if (i == n)
        return;
    if (n >= lanes)
    {
        // The last vector overlaps the one before and computes some outputs once more.
        firVectors<1, 4>(d, inputs, count, n - lanes, dst);
        return;
    }
    for (; i < n; ++i)
        dst[i] = firSingle(d, inputs, count, i);
}

//==============================================================================
// IIR

/** Transposed direct form II sample by sample, for any order. */
template <typename T>
HWY_INLINE void recursiveScalar(const T* src, T* dst, std::size_t n, RecursiveFilter<T>& filter)
{
    const int order = filter.order;
    const T* b = filter.taps;
    const T* a = filter.taps + order + 1;
    T* z = filter.delay;
    for (std::size_t i = 0; i < n; ++i)
    {
        const T x = src[i];
        const T y = order > 0 ? b[0] * x + z[0] : b[0] * x;
        for (int k = 1; k < order; ++k)
            z[k - 1] = b[k] * x - a[k] * y + z[k];
        if (order > 0)
            z[order - 1] = b[order] * x - a[order] * y;
        dst[i] = y;
    }
}

/** Order 1 or 2, a vector of outputs at a time. n is a whole number of vectors, at least one. */
template <int order, typename T>
HWY_INLINE void recursiveVectors(const T* src, T* dst, std::size_t n, RecursiveFilter<T>& filter)
{
    const hn::CappedTag<T, RecursiveFilter<T>::maxLanes> d;
    using V = hn::VFromD<decltype(d)>;
    constexpr std::size_t lanes = hn::MaxLanes(d);
    static_assert(lanes >= 2);

    V columns[lanes];
    for (std::size_t j = 0; j < lanes; ++j)
        columns[j] = hn::Load(d, filter.columns[j].data());

    // What the vector's own inputs bring: two sums, so that the additions overlap.
    const auto respondToInputs = [&](const T* x) HWY_ATTR
    {
        V even = hn::Mul(columns[0], hn::Set(d, x[0]));
        V odd = hn::Mul(columns[1], hn::Set(d, x[1]));
        for (std::size_t j = 2; j < lanes; j += 2)
        {
            even = hn::MulAdd(columns[j], hn::Set(d, x[j]), even);
            odd = hn::MulAdd(columns[j + 1], hn::Set(d, x[j + 1]), odd);
        }
        return hn::Add(even, odd);
    };

    T x1 = src[lanes - 1];
    T x2 = src[lanes - 2];
    V y = respondToInputs(src);
    y = hn::MulAdd(hn::Load(d, filter.delayResponse[0].data()), hn::Set(d, filter.delay[0]), y);
    if constexpr (order == 2)
        y = hn::MulAdd(hn::Load(d, filter.delayResponse[1].data()), hn::Set(d, filter.delay[1]), y);
    hn::StoreU(y, d, dst);

    const V v1 = hn::Load(d, filter.inputResponse[0].data());
    const V u1 = hn::Load(d, filter.outputResponse[0].data());
    const V v2 = hn::Load(d, filter.inputResponse[1].data());
    const V u2 = hn::Load(d, filter.outputResponse[1].data());
    const hn::RebindToSigned<decltype(d)> indices;
    using Index = hn::TFromD<decltype(indices)>;
    const auto last = hn::IndicesFromVec(d, hn::Set(indices, static_cast<Index>(lanes - 1)));
    const auto lastButOne = hn::IndicesFromVec(d, hn::Set(indices, static_cast<Index>(lanes - 2)));

    for (std::size_t i = lanes; i < n; i += lanes)
    {
        V response = hn::MulAdd(v1, hn::Set(d, x1), respondToInputs(src + i));
        if constexpr (order == 2)
        {
            response = hn::MulAdd(v2, hn::Set(d, x2), response);
            response = hn::MulAdd(u2, hn::TableLookupLanes(y, lastButOne), response);
        }
        // In place, the store below overwrites these.
        x1 = src[i + lanes - 1];
        x2 = src[i + lanes - 2];
        y = hn::MulAdd(u1, hn::TableLookupLanes(y, last), response);
        hn::StoreU(y, d, dst + i);
    }

    const T* b = filter.taps;
    const T* a = filter.taps + order + 1;
    const T y1 = dst[n - 1];
    const T y2 = dst[n - 2];
    filter.delay[0] = b[1] * x1 - a[1] * y1;
    if constexpr (order == 2)
    {
        filter.delay[0] += b[2] * x2 - a[2] * y2;
        filter.delay[1] = b[2] * x1 - a[2] * y1;
    }
}

template <typename T>
HWY_INLINE void recursive(const T* src, T* dst, std::size_t n, RecursiveFilter<T>& filter)
{
    const std::size_t lanes = hn::Lanes(hn::CappedTag<T, RecursiveFilter<T>::maxLanes>());
    const std::size_t inVectors = filter.order == 1 || filter.order == 2 ? n / lanes * lanes : 0;
    if (inVectors > 0)
    {
        if (filter.order == 1)
            recursiveVectors<1>(src, dst, inVectors, filter);
        else
            recursiveVectors<2>(src, dst, inVectors, filter);
    }
    recursiveScalar(src + inVectors, dst + inVectors, n - inVectors, filter);
}

HWY_INLINE void recursive32(const float* src, float* dst, std::size_t n, RecursiveFilter<float>& filter)
{
    recursive(src, dst, n, filter);
}

HWY_INLINE void recursive64(const double* src, double* dst, std::size_t n, RecursiveFilter<double>& filter)
{
    recursive(src, dst, n, filter);
}

} // namespace HWY_NAMESPACE
} // namespace vesk::audio::kernels
HWY_AFTER_NAMESPACE();

#endif
