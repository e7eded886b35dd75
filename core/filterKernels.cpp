// The filters' public face: taps, states and how a block is cut. The routines are in kernels/Filters-inl.h.

#include "core/kernels.h"
#include "core/kernels/Arguments.h"
#include "core/kernels/Tables.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace vesk::audio
{

using kernels::checkArrays;
using kernels::getKernels;
using kernels::toSize;

//==============================================================================
// FIR

namespace
{

/** A filter runs in pieces of at most this many samples: history and piece lie contiguous in the buffer, so
    that the routine reads them without a seam, and so that it can work in place. */
constexpr int firPieceLength = 1024;

constexpr int largestFirLength = 1 << 24;

} // namespace

IppStatus ippsFIRSRGetSize(int tapsLength, int dataType, int* specBytes, int* bufferBytes)
{
    if (specBytes == nullptr || bufferBytes == nullptr)
        return ippStsNullPtrErr;
    if (tapsLength < 1 || tapsLength > largestFirLength)
        return ippStsFIRLenErr;
    if (dataType != ippDataType32f)
        return ippStsBadArgErr;
    *specBytes = static_cast<int>(sizeof(FirSpec) + 2 * toSize(tapsLength) * sizeof(float));
    *bufferBytes =
        static_cast<int>((toSize(tapsLength) - 1 + firPieceLength) * sizeof(float) + kernels::cacheLine);
    return ippStsNoErr;
}

IppStatus ippsFIRSRInit_32f(const float* taps, int tapsLength, int algorithm, FirSpec* spec)
{
    if (taps == nullptr || spec == nullptr)
        return ippStsNullPtrErr;
    if (tapsLength < 1 || tapsLength > largestFirLength)
        return ippStsFIRLenErr;
    if (algorithm != ippFirDirectForm)
        return ippStsBadArgErr;
    spec->magic = FirSpec::marker;
    spec->tapsLength = tapsLength;
    float* forward = spec->getTaps();
    float* reversed = forward + tapsLength;
    for (int k = 0; k < tapsLength; ++k)
    {
        forward[k] = taps[k];
        reversed[tapsLength - 1 - k] = taps[k];
    }
    return ippStsNoErr;
}

IppStatus ippsFIRSR_32f(const float* src, float* dst, int n, const FirSpec* spec, const float* dlySrc,
                        float* dlyDst, std::uint8_t* buffer)
{
    if (const auto status = checkArrays(n, src, dst, spec, buffer); status != ippStsNoErr)
        return status;
    if (spec->magic != FirSpec::marker)
        return ippStsContextMatchErr;

    const auto tapsLength = toSize(spec->tapsLength);
    const std::size_t past = tapsLength - 1;
    float* history = kernels::alignToCacheLine<float>(buffer);
    const FirInput input{.block = history + past, .spec = spec};
    if (dlySrc != nullptr)
        std::memcpy(history, dlySrc, past * sizeof(float));
    else
        std::memset(history, 0, past * sizeof(float));

    const auto total = toSize(n);
    for (std::size_t done = 0;;)
    {
        const auto length = std::min(total - done, toSize(firPieceLength));
        std::memcpy(history + past, src + done, length * sizeof(float));
        getKernels().fir(&input, 1, dst + done, length);
        done += length;
        float* newPast = done < total ? history : dlyDst;
        if (newPast != nullptr)
            std::memmove(newPast, history + length, past * sizeof(float));
        if (done == total)
            break;
    }
    return ippStsNoErr;
}

IppStatus firSum_32f(std::span<const FirInput> inputs, float* dst, int n)
{
    if (inputs.empty())
        return ippStsBadArgErr;
    for (const auto& input : inputs)
    {
        if (const auto status = checkArrays(n, input.block, input.spec, dst); status != ippStsNoErr)
            return status;
        if (input.spec->magic != FirSpec::marker || input.spec->tapsLength != inputs.front().spec->tapsLength)
            return ippStsContextMatchErr;
    }
    getKernels().fir(inputs.data(), inputs.size(), dst, toSize(n));
    return ippStsNoErr;
}

//==============================================================================
// IIR

struct IirState32 : kernels::RecursiveFilter<float>
{
};

struct IirState64 : kernels::RecursiveFilter<double>
{
};

namespace
{

template <typename State, typename T>
IppStatus getRecursiveSize(int order, int* bytes)
{
    if (bytes == nullptr)
        return ippStsNullPtrErr;
    if (order < 0 || order > kernels::largestRecursiveOrder)
        return ippStsIIROrderErr;
    const auto values = 2 * (toSize(order) + 1) + toSize(order);
    *bytes = static_cast<int>(sizeof(State) + values * sizeof(T) + kernels::cacheLine);
    return ippStsNoErr;
}

/** One step of the transposed direct form II in double. */
double stepInDouble(double x, const double* b, const double* a, std::array<double, 2>& z)
{
    const double y = b[0] * x + z[0];
    z[0] = b[1] * x - a[1] * y + z[1];
    z[1] = b[2] * x - a[2] * y;
    return y;
}

/** The responses that the vector routine adds up, see kernels::RecursiveFilter. */
template <typename T>
void prepareVectorResponses(kernels::RecursiveFilter<T>& filter)
{
    constexpr auto lanes = kernels::RecursiveFilter<T>::maxLanes;
    double b[3] = {};
    double a[3] = {};
    for (int k = 0; k <= filter.order; ++k)
    {
        b[k] = static_cast<double>(filter.taps[k]);
        a[k] = static_cast<double>(filter.taps[filter.order + 1 + k]);
    }

    std::array<double, lanes> impulse{};
    std::array<double, lanes> delay0{};
    std::array<double, lanes> delay1{};
    std::array<double, 2> afterImpulse{0.0, 0.0};
    std::array<double, 2> fromDelay0{1.0, 0.0};
    std::array<double, 2> fromDelay1{0.0, 1.0};
    for (std::size_t i = 0; i < lanes; ++i)
    {
        impulse[i] = stepInDouble(i == 0 ? 1.0 : 0.0, b, a, afterImpulse);
        delay0[i] = stepInDouble(0.0, b, a, fromDelay0);
        delay1[i] = stepInDouble(0.0, b, a, fromDelay1);
    }

    for (std::size_t i = 0; i < lanes; ++i)
    {
        for (std::size_t j = 0; j < lanes; ++j)
            filter.columns[j][i] = static_cast<T>(i >= j ? impulse[i - j] : 0.0);
        filter.delayResponse[0][i] = static_cast<T>(delay0[i]);
        filter.delayResponse[1][i] = static_cast<T>(delay1[i]);
        filter.inputResponse[0][i] = static_cast<T>(b[1] * delay0[i] + b[2] * delay1[i]);
        filter.inputResponse[1][i] = static_cast<T>(b[2] * delay0[i]);
        filter.outputResponse[0][i] = static_cast<T>(-a[1] * delay0[i] - a[2] * delay1[i]);
        filter.outputResponse[1][i] = static_cast<T>(-a[2] * delay0[i]);
    }
}

template <typename State, typename T>
IppStatus initRecursive(State** state, const T* taps, int order, const T* delayLine, std::uint8_t* buffer)
{
    if (state == nullptr || taps == nullptr || buffer == nullptr)
        return ippStsNullPtrErr;
    if (order < 0 || order > kernels::largestRecursiveOrder)
        return ippStsIIROrderErr;
    const T a0 = taps[order + 1];
    if (a0 == T(0))
        return ippStsDivByZeroErr;

    auto* filter = kernels::alignToCacheLine<State>(buffer);
    auto* values = reinterpret_cast<T*>(filter + 1);
    const auto numTaps = 2 * (toSize(order) + 1);

    // delayLine may be the state's own delay values from before.
    if (delayLine != nullptr)
        std::memmove(values + numTaps, delayLine, toSize(order) * sizeof(T));
    else
        std::fill_n(values + numTaps, order, T(0));
    for (std::size_t k = 0; k < numTaps; ++k)
        values[k] = taps[k] / a0;

    filter->kernels = &getKernels();
    filter->order = order;
    filter->taps = values;
    filter->delay = values + numTaps;
    if (order == 1 || order == 2)
        prepareVectorResponses<T>(*filter);
    *state = filter;
    return ippStsNoErr;
}

template <typename State, typename T>
IppStatus getDelayLine(const State* state, T* dst)
{
    if (state == nullptr || dst == nullptr)
        return ippStsNullPtrErr;
    std::memcpy(dst, state->delay, toSize(state->order) * sizeof(T));
    return ippStsNoErr;
}

} // namespace

IppStatus ippsIIRGetStateSize_32f(int order, int* bytes)
{
    return getRecursiveSize<IirState32, float>(order, bytes);
}

IppStatus ippsIIRGetStateSize_64f(int order, int* bytes)
{
    return getRecursiveSize<IirState64, double>(order, bytes);
}

IppStatus ippsIIRInit_32f(IirState32** state, const float* taps, int order, const float* delayLine,
                          std::uint8_t* buffer)
{
    return initRecursive(state, taps, order, delayLine, buffer);
}

IppStatus ippsIIRInit_64f(IirState64** state, const double* taps, int order, const double* delayLine,
                          std::uint8_t* buffer)
{
    return initRecursive(state, taps, order, delayLine, buffer);
}

IppStatus ippsIIRGetDlyLine_32f(const IirState32* state, float* dst) { return getDelayLine(state, dst); }

IppStatus ippsIIRGetDlyLine_64f(const IirState64* state, double* dst) { return getDelayLine(state, dst); }

IppStatus ippsIIRSetDlyLine_32f(IirState32* state, const float* src)
{
    if (state == nullptr)
        return ippStsNullPtrErr;
    for (int k = 0; k < state->order; ++k)
        state->delay[k] = src != nullptr ? src[k] : 0.0f;
    return ippStsNoErr;
}

IppStatus ippsIIR_32f(const float* src, float* dst, int n, IirState32* state)
{
    if (const auto status = checkArrays(n, src, dst, state); status != ippStsNoErr)
        return status;
    state->kernels->recursive32(src, dst, toSize(n), *state);
    return ippStsNoErr;
}

IppStatus ippsIIR_64f(const double* src, double* dst, int n, IirState64* state)
{
    if (const auto status = checkArrays(n, src, dst, state); status != ippStsNoErr)
        return status;
    state->kernels->recursive64(src, dst, toSize(n), *state);
    return ippStsNoErr;
}

} // namespace vesk::audio
