// The kernels' public face: status, memory, element-wise operations. Filters, random numbers and transforms have
// files of their own.

#include "core/kernels.h"

#include "core/MemoryPool.h"
#include "core/kernels/Arguments.h"
#include "core/kernels/KernelTable.h"

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

using kernels::checkArrays;
using kernels::getKernels;
using kernels::toSize;

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

} // namespace vesk::audio
