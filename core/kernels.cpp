#include "core/kernels.h"

#include "core/MemoryPool.h"
#include "core/kernels/Tables.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <stdexcept>
#include <string>

#if defined(__SSE__) || defined(_M_X64)
#include <immintrin.h>
#endif

namespace vesk::audio
{

using kernels::getKernels;

//==============================================================================
// Status

const char* ippGetStatusString(IppStatus status)
{
    switch (status)
    {
    case ippStsNoErr: return "ippStsNoErr: No errors.";
    case ippStsNullPtrErr: return "ippStsNullPtrErr: Null pointer error.";
    case ippStsSizeErr: return "ippStsSizeErr: Incorrect value for data size.";
    case ippStsBadArgErr: return "ippStsBadArgErr: Incorrect arg/param of the function.";
    case ippStsContextMatchErr:
        return "ippStsContextMatchErr: Context parameter does not match the operation.";
    case ippStsMemAllocErr: return "ippStsMemAllocErr: Memory allocated for the operation is not enough.";
    case ippStsDivByZeroErr: return "ippStsDivByZeroErr: An attempt to divide by zero.";
    case ippStsDivByZero: return "ippStsDivByZero: Zero value(s) for the divisor in the Div function.";
    case ippStsToneMagnErr: return "ippStsToneMagnErr: Tone magnitude is less than, or equal to zero.";
    case ippStsToneFreqErr:
        return "ippStsToneFreqErr: Tone frequency is negative, or greater than, or equal to 0.5.";
    case ippStsTonePhaseErr:
        return "ippStsTonePhaseErr: Tone phase is negative, or greater than, or equal to 2*PI.";
    case ippStsSampleFactorErr:
        return "ippStsSampleFactorErr: Sampling factor is less than, or equal to zero.";
    case ippStsSamplePhaseErr:
        return "ippStsSamplePhaseErr: Phase value is out of range: 0 <= phase < factor.";
    case ippStsFIRLenErr: return "ippStsFIRLenErr: Length of a FIR filter is less than, or equal to zero.";
    case ippStsIIROrderErr: return "ippStsIIROrderErr: Order of an IIR filter is not valid.";
    case ippStsFftFlagErr: return "ippStsFftFlagErr: Invalid value for the FFT flag parameter.";
    case ippStsFftOrderErr: return "ippStsFftOrderErr: Invalid value for the FFT order parameter.";
    case ippStsThresholdErr: return "ippStsThresholdErr: Invalid threshold bounds.";
    default: return "ippStsUnknownStatusCodeErr: Unknown status code.";
    }
}

void check(IppStatus status)
{
    if (status < 0)
        throw std::runtime_error(std::string("IPP exception: ") + ippGetStatusString(status));
}

namespace
{

/** The rules that hold for every kernel on arrays. */
template <typename... Arrays>
IppStatus checkArrays(int n, const Arrays*... arrays)
{
    if (((arrays == nullptr) || ...))
        return ippStsNullPtrErr;
    return n < 1 ? ippStsSizeErr : ippStsNoErr;
}

std::size_t toSize(int n) { return static_cast<std::size_t>(n); }

} // namespace

//==============================================================================
// Memory and environment

void* ippMalloc(int bytes) { return bytes < 1 ? nullptr : MemoryPool::allocate(toSize(bytes)); }

void ippFree(void* block) { MemoryPool::release(block); }

std::uint8_t* ippsMalloc_8u(int bytes) { return static_cast<std::uint8_t*>(ippMalloc(bytes)); }

void ippsFree(void* block) { MemoryPool::release(block); }

IppStatus ippInit()
{
    kernels::selectKernels(*kernels::getAvailableKernels().front());
    return ippStsNoErr;
}

const char* ippGetInstructionSetName() { return getKernels().name; }

namespace
{

#if defined(__SSE__) || defined(_M_X64)

constexpr std::uint64_t flushToZeroBit = 0x8000;
constexpr std::uint64_t denormalsAreZeroBit = 0x0040;
std::uint64_t readControlWord() { return _mm_getcsr(); }
void writeControlWord(std::uint64_t word) { _mm_setcsr(static_cast<unsigned>(word)); }

#elif defined(__aarch64__)

// One bit governs operands and results.
constexpr std::uint64_t flushToZeroBit = 1U << 24;
constexpr std::uint64_t denormalsAreZeroBit = flushToZeroBit;

std::uint64_t readControlWord()
{
    std::uint64_t word = 0;
    asm volatile("mrs %0, fpcr" : "=r"(word));
    return word;
}

void writeControlWord(std::uint64_t word) { asm volatile("msr fpcr, %0" : : "r"(word)); }

#else

constexpr std::uint64_t flushToZeroBit = 0;
constexpr std::uint64_t denormalsAreZeroBit = 0;
std::uint64_t readControlWord() { return 0; }
void writeControlWord(std::uint64_t) {}

#endif

std::uint64_t setControlBit(std::uint64_t bit, bool on)
{
    const auto word = readControlWord();
    writeControlWord(on ? word | bit : word & ~bit);
    return word;
}

} // namespace

IppStatus ippSetFlushToZero(int on, unsigned* state)
{
    const auto previous = setControlBit(flushToZeroBit, on != 0);
    if (state != nullptr)
        *state = static_cast<unsigned>(previous);
    return ippStsNoErr;
}

IppStatus ippSetDenormAreZeros(int on)
{
    setControlBit(denormalsAreZeroBit, on != 0);
    return ippStsNoErr;
}

IppStatus ippSetNumThreads(int n) { return n < 1 ? ippStsSizeErr : ippStsNoErr; }

//==============================================================================
// Element-wise kernels

IppStatus ippsCopy_8u(const std::uint8_t* src, std::uint8_t* dst, int bytes)
{
    if (const auto status = checkArrays(bytes, src, dst); status != ippStsNoErr)
        return status;
    if (src != dst)
        std::memcpy(dst, src, toSize(bytes));
    return ippStsNoErr;
}

IppStatus ippsZero_32f(float* dst, int n)
{
    if (const auto status = checkArrays(n, dst); status != ippStsNoErr)
        return status;
    std::memset(dst, 0, toSize(n) * sizeof(float));
    return ippStsNoErr;
}

IppStatus ippsSet_32f(float value, float* dst, int n)
{
    if (const auto status = checkArrays(n, dst); status != ippStsNoErr)
        return status;
    getKernels().set32(value, dst, toSize(n));
    return ippStsNoErr;
}

IppStatus ippsSet_64f(double value, double* dst, int n)
{
    if (const auto status = checkArrays(n, dst); status != ippStsNoErr)
        return status;
    getKernels().set64(value, dst, toSize(n));
    return ippStsNoErr;
}

IppStatus ippsAdd_32f(const float* a, const float* b, float* dst, int n)
{
    if (const auto status = checkArrays(n, a, b, dst); status != ippStsNoErr)
        return status;
    getKernels().add(a, b, dst, toSize(n));
    return ippStsNoErr;
}

IppStatus ippsSub_32f(const float* a, const float* b, float* dst, int n)
{
    if (const auto status = checkArrays(n, a, b, dst); status != ippStsNoErr)
        return status;
    getKernels().subtract(a, b, dst, toSize(n));
    return ippStsNoErr;
}

IppStatus ippsMul_32f(const float* a, const float* b, float* dst, int n)
{
    if (const auto status = checkArrays(n, a, b, dst); status != ippStsNoErr)
        return status;
    getKernels().multiply(a, b, dst, toSize(n));
    return ippStsNoErr;
}

IppStatus ippsMulC_32f(const float* src, float c, float* dst, int n)
{
    if (const auto status = checkArrays(n, src, dst); status != ippStsNoErr)
        return status;
    if (c == 0.0f)
        std::memset(dst, 0, toSize(n) * sizeof(float));
    else if (c != 1.0f)
        getKernels().scale(src, c, dst, toSize(n));
    else if (src != dst)
        std::memcpy(dst, src, toSize(n) * sizeof(float));
    return ippStsNoErr;
}

IppStatus ippsDiv_32f(const float* a, const float* b, float* dst, int n)
{
    if (const auto status = checkArrays(n, a, b, dst); status != ippStsNoErr)
        return status;
    return getKernels().divide(a, b, dst, toSize(n)) ? ippStsDivByZero : ippStsNoErr;
}

IppStatus copyBounded(const float* src, float limit, float* dst, int n)
{
    if (const auto status = checkArrays(n, src, dst); status != ippStsNoErr)
        return status;
    getKernels().copyBounded(src, limit, dst, toSize(n));
    return ippStsNoErr;
}

IppStatus ippsMax_32f(const float* src, int n, float* max)
{
    if (const auto status = checkArrays(n, src, max); status != ippStsNoErr)
        return status;
    *max = getKernels().maximum(src, toSize(n));
    return ippStsNoErr;
}

IppStatus ippsPolarToCart_32fc(const float* magnitude, const float* phase, std::complex<float>* dst, int n)
{
    if (const auto status = checkArrays(n, magnitude, phase, dst); status != ippStsNoErr)
        return status;
    getKernels().polarToCartesian(magnitude, phase, dst, toSize(n));
    return ippStsNoErr;
}

IppStatus ippsConvert_32f64f(const float* src, double* dst, int n)
{
    if (const auto status = checkArrays(n, src, dst); status != ippStsNoErr)
        return status;
    getKernels().toDouble(src, dst, toSize(n));
    return ippStsNoErr;
}

IppStatus ippsConvert_64f32f(const double* src, float* dst, int n)
{
    if (const auto status = checkArrays(n, src, dst); status != ippStsNoErr)
        return status;
    getKernels().toFloat(src, dst, toSize(n));
    return ippStsNoErr;
}

IppStatus ippsTone_32f(float* dst, int n, float magnitude, float frequency, float* phase, int)
{
    constexpr double twoPi = 2.0 * std::numbers::pi;
    if (const auto status = checkArrays(n, dst, phase); status != ippStsNoErr)
        return status;
    if (!(magnitude > 0.0f))
        return ippStsToneMagnErr;
    if (!(frequency >= 0.0f && frequency < 0.5f))
        return ippStsToneFreqErr;
    if (!(*phase >= 0.0f && *phase < static_cast<float>(twoPi)))
        return ippStsTonePhaseErr;

    // A phasor in double, turned sample by sample. Its magnitude drifts by rounding only, far below a float's
    // resolution for any block.
    const double start = static_cast<double>(*phase);
    const double step = twoPi * static_cast<double>(frequency);
    const std::complex<double> turn = std::polar(1.0, step);
    std::complex<double> phasor = std::polar(static_cast<double>(magnitude), start);
    for (int i = 0; i < n; ++i)
    {
        dst[i] = static_cast<float>(phasor.real());
        phasor = {phasor.real() * turn.real() - phasor.imag() * turn.imag(),
                  phasor.real() * turn.imag() + phasor.imag() * turn.real()};
    }

    const auto next = static_cast<float>(std::fmod(start + step * n, twoPi));
    *phase = next < static_cast<float>(twoPi) ? next : 0.0f;
    return ippStsNoErr;
}

IppStatus ippsMul_32fc(const std::complex<float>* a, const std::complex<float>* b, std::complex<float>* dst,
                       int n)
{
    if (const auto status = checkArrays(n, a, b, dst); status != ippStsNoErr)
        return status;
    getKernels().multiplyComplex(a, b, dst, toSize(n));
    return ippStsNoErr;
}

IppStatus ippsAddProduct_32fc(const std::complex<float>* a, const std::complex<float>* b,
                              std::complex<float>* acc, int n)
{
    if (const auto status = checkArrays(n, a, b, acc); status != ippStsNoErr)
        return status;
    getKernels().addProductComplex(a, b, acc, toSize(n));
    return ippStsNoErr;
}

IppStatus ippsPhase_32fc(const std::complex<float>* src, float* dst, int n)
{
    if (const auto status = checkArrays(n, src, dst); status != ippStsNoErr)
        return status;
    getKernels().phase(src, dst, toSize(n));
    return ippStsNoErr;
}

IppStatus ippsRealToCplx_32f(const float* re, const float* im, std::complex<float>* dst, int n)
{
    if (const auto status = checkArrays(n, re, dst); status != ippStsNoErr)
        return status;
    getKernels().interleave(re, im, dst, toSize(n));
    return ippStsNoErr;
}

IppStatus ippsThreshold_LTValGTVal_32f(const float* src, float* dst, int n, float levelLow, float valueLow,
                                       float levelHigh, float valueHigh)
{
    if (const auto status = checkArrays(n, src, dst); status != ippStsNoErr)
        return status;
    if (levelLow > levelHigh)
        return ippStsThresholdErr;
    getKernels().threshold(src, dst, toSize(n), levelLow, valueLow, levelHigh, valueHigh);
    return ippStsNoErr;
}

namespace
{

IppStatus checkResampling(const float* src, int srcLength, const float* dst, const int* dstLength, int factor,
                          const int* phase)
{
    if (const auto status = checkArrays(srcLength, src, dst, dstLength, phase); status != ippStsNoErr)
        return status;
    if (factor < 1)
        return ippStsSampleFactorErr;
    return *phase < 0 || *phase >= factor ? ippStsSamplePhaseErr : ippStsNoErr;
}

} // namespace

IppStatus ippsSampleUp_32f(const float* src, int srcLength, float* dst, int* dstLength, int factor,
                           int* phase)
{
    if (const auto status = checkResampling(src, srcLength, dst, dstLength, factor, phase);
        status != ippStsNoErr)
        return status;
    if (srcLength > std::numeric_limits<int>::max() / factor)
        return ippStsSizeErr;
    *dstLength = srcLength * factor;
    std::memset(dst, 0, toSize(*dstLength) * sizeof(float));
    for (int i = 0; i < srcLength; ++i)
        dst[i * factor + *phase] = src[i];
    return ippStsNoErr;
}

IppStatus ippsSampleDown_32f(const float* src, int srcLength, float* dst, int* dstLength, int factor,
                             int* phase)
{
    if (const auto status = checkResampling(src, srcLength, dst, dstLength, factor, phase);
        status != ippStsNoErr)
        return status;
    int written = 0;
    for (std::int64_t i = *phase; i < srcLength; i += factor)
        dst[written++] = src[i];
    *dstLength = written;
    return ippStsNoErr;
}

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

//==============================================================================
// Random numbers

namespace
{

/** A window onto the sequence: the block that holds value number position is in values. */
struct RandomSequence
{
    const kernels::KernelTable* kernels;
    std::uint64_t key;
    std::uint64_t position;
    float first;  ///< mean, or low
    float second; ///< standard deviation, or high
    std::array<float, kernels::randomBlockLength> values;
};

/** Spreads a seed over 64 bits (the finaliser of SplitMix64), so that neighbouring seeds share nothing. */
std::uint64_t makeKey(unsigned seed)
{
    std::uint64_t z = (static_cast<std::uint64_t>(seed) + 1) * 0x9e3779b97f4a7c15U;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
    return z ^ (z >> 31);
}

IppStatus initSequence(RandomSequence* state, float first, float second, unsigned seed)
{
    if (state == nullptr)
        return ippStsNullPtrErr;
    state->kernels = &getKernels();
    state->key = makeKey(seed);
    state->position = 0;
    state->first = first;
    state->second = second;
    return ippStsNoErr;
}

template <typename MakeBlock>
IppStatus generate(float* dst, int n, RandomSequence* state, MakeBlock makeBlock)
{
    if (const auto status = checkArrays(n, dst, state); status != ippStsNoErr)
        return status;
    constexpr auto blockLength = kernels::randomBlockLength;
    auto remaining = toSize(n);
    while (remaining > 0)
    {
        const auto offset = static_cast<std::size_t>(state->position % blockLength);
        const auto block = state->position / blockLength;
        const auto count = std::min(remaining, blockLength - offset);
        if (count == blockLength)
            makeBlock(dst, block);
        else
        {
            if (offset == 0)
                makeBlock(state->values.data(), block);
            std::memcpy(dst, state->values.data() + offset, count * sizeof(float));
        }
        dst += count;
        remaining -= count;
        state->position += count;
    }
    return ippStsNoErr;
}

} // namespace

struct RandomGaussState : RandomSequence
{
};

struct RandomUniformState : RandomSequence
{
};

IppStatus ippsRandGaussGetSize_32f(int* bytes)
{
    if (bytes == nullptr)
        return ippStsNullPtrErr;
    *bytes = static_cast<int>(sizeof(RandomGaussState));
    return ippStsNoErr;
}

IppStatus ippsRandUniformGetSize_32f(int* bytes)
{
    if (bytes == nullptr)
        return ippStsNullPtrErr;
    *bytes = static_cast<int>(sizeof(RandomUniformState));
    return ippStsNoErr;
}

IppStatus ippsRandGaussInit_32f(RandomGaussState* state, float mean, float stdDev, unsigned seed)
{
    return initSequence(state, mean, stdDev, seed);
}

IppStatus ippsRandUniformInit_32f(RandomUniformState* state, float low, float high, unsigned seed)
{
    return initSequence(state, low, high, seed);
}

IppStatus ippsRandGauss_32f(float* dst, int n, RandomGaussState* state)
{
    return generate(dst, n, state,
                    [state](float* values, std::uint64_t block) {
                        state->kernels->gaussianBlock(values, block, state->key, state->first, state->second);
                    });
}

IppStatus ippsRandUniform_32f(float* dst, int n, RandomUniformState* state)
{
    return generate(dst, n, state,
                    [state](float* values, std::uint64_t block) {
                        state->kernels->uniformBlock(values, block, state->key, state->first, state->second);
                    });
}

} // namespace vesk::audio
