/**
    The vector operations that everything above is made of.

    Plain functions on plain arrays. Each returns an IppStatus: 0 is success, a positive value a warning, a
    negative value an error. Two rules hold for every kernel: a null array gives ippStsNullPtrErr and a length
    below 1 gives ippStsSizeErr, and in both cases nothing is written. A destination may be identical to a
    source; partial overlap is not allowed. No alignment is required of any array.

    In the names, 32f and 64f are real floats and doubles, 32fc interleaved pairs of floats.

    This is the public face. The code behind it is compiled once for each instruction set (see kernels/), and
    ippInit chooses among them once, for the processor at hand. Before that the baseline of the build serves,
    so that kernels work in any start-up order.

    Example:

        float mixed[64];
        check(ippsAdd_32f(dry, wet, mixed, 64));

    Thread: kernels are reentrant. A specification or state object serves one thread at a time, except where
    it is only read (the transform's and the FIR's specifications).
*/
#pragma once

#include <complex>
#include <cstdint>
#include <span>

namespace vesk::audio
{

//==============================================================================
// Status

/** Result of a kernel: 0 success, positive warning, negative error. */
using IppStatus = std::int32_t;

inline constexpr IppStatus ippStsNoErr = 0;
inline constexpr IppStatus ippStsDivByZero = 6;
inline constexpr IppStatus ippStsBadArgErr = -5;
inline constexpr IppStatus ippStsSizeErr = -6;
inline constexpr IppStatus ippStsNullPtrErr = -8;
inline constexpr IppStatus ippStsMemAllocErr = -9;
inline constexpr IppStatus ippStsDivByZeroErr = -10;
inline constexpr IppStatus ippStsContextMatchErr = -13;
inline constexpr IppStatus ippStsFftOrderErr = -15;
inline constexpr IppStatus ippStsFftFlagErr = -16;
inline constexpr IppStatus ippStsThresholdErr = -19;
inline constexpr IppStatus ippStsIIROrderErr = -25;
inline constexpr IppStatus ippStsFIRLenErr = -26;
inline constexpr IppStatus ippStsSamplePhaseErr = -29;
inline constexpr IppStatus ippStsSampleFactorErr = -30;
inline constexpr IppStatus ippStsToneMagnErr = -46;
inline constexpr IppStatus ippStsToneFreqErr = -47;
inline constexpr IppStatus ippStsTonePhaseErr = -48;

/** The fixed text of a status, "name: sentence". Never null. */
const char* ippGetStatusString(IppStatus status);

/** Turns an error into std::runtime_error("IPP exception: " + status text). Warnings pass. */
void check(IppStatus status);

//==============================================================================
// Memory and environment

/** A block aligned to 64 bytes, from the pool (see MemoryPool.h). Null for bytes below 1 and on exhaustion.
    Thread: any; lock-free once the pool holds blocks of this size. */
void* ippMalloc(int bytes);

/** Gives back a block of ippMalloc or ippsMalloc_8u; null is ignored. Thread: any, also another one than the
    block was taken on. */
void ippFree(void* block);

/** As ippMalloc, for specifications and states. */
std::uint8_t* ippsMalloc_8u(int bytes);

/** As ippFree. */
void ippsFree(void* block);

/** Chooses the implementation for the processor at hand. Called once, by the start-up (DspCore). */
IppStatus ippInit();

/** Names the instruction set that ippInit chose, such as "AVX2", for benchmarks and reports. */
const char* ippGetInstructionSetName();

/** With on = 1 the calling thread flushes denormal results to zero. state receives the previous control word
    and may be null. */
IppStatus ippSetFlushToZero(int on, unsigned* state);

/** With on = 1 the calling thread reads denormal operands as zero. */
IppStatus ippSetDenormAreZeros(int on);

/** Kernels use at most n threads of their own. They never start any, so this only checks n. */
IppStatus ippSetNumThreads(int n);

//==============================================================================
// Element-wise kernels. All work on n elements.

IppStatus ippsCopy_8u(const std::uint8_t* src, std::uint8_t* dst, int bytes);
IppStatus ippsZero_32f(float* dst, int n);
IppStatus ippsSet_32f(float value, float* dst, int n);
IppStatus ippsSet_64f(double value, double* dst, int n);

/** dst[i] = a[i] + b[i] */
IppStatus ippsAdd_32f(const float* a, const float* b, float* dst, int n);

/** dst[i] = b[i] - a[i]: the first operand is the one subtracted. */
IppStatus ippsSub_32f(const float* a, const float* b, float* dst, int n);

/** dst[i] = a[i] * b[i] */
IppStatus ippsMul_32f(const float* a, const float* b, float* dst, int n);

/** dst[i] = src[i] * c. For c exactly 1 a plain copy, for c exactly 0 zeros, even over NaN and infinity: the
    shelf of 0 dB in Butterworth relies on it. */
IppStatus ippsMulC_32f(const float* src, float c, float* dst, int n);

/** dst[i] = b[i] / a[i]: the first operand is the divisor. A zero divisor gives the warning ippStsDivByZero
    and the IEEE result. */
IppStatus ippsDiv_32f(const float* a, const float* b, float* dst, int n);

/** dst[i] = src[i] as far as its magnitude is at most limit, else 0: so for infinities and for what is not a
    number. For samples from outside, of which nothing is known. */
IppStatus copyBounded(const float* src, float limit, float* dst, int n);

/** The largest element, signed. NaNs are passed over; minus infinity if there is nothing else. */
IppStatus ippsMax_32f(const float* src, int n, float* max);

/** dst[i] = magnitude[i] * (cos phase[i] + j sin phase[i]); phase in radians. */
IppStatus ippsPolarToCart_32fc(const float* magnitude, const float* phase, std::complex<float>* dst, int n);

/** Width conversion, rounding to nearest. */
IppStatus ippsConvert_32f64f(const float* src, double* dst, int n);
IppStatus ippsConvert_64f32f(const double* src, float* dst, int n);

/** dst[i] = magnitude * cos(2 pi frequency i + phase).
    @param magnitude  above 0
    @param frequency  cycles per sample, 0 up to below 0.5
    @param phase      radians, 0 up to below 2 pi; on return the phase of the sample after the last
    @param hint       unused */
IppStatus ippsTone_32f(float* dst, int n, float magnitude, float frequency, float* phase, int hint);

/** dst[i] = a[i] * b[i], complex. */
IppStatus ippsMul_32fc(const std::complex<float>* a, const std::complex<float>* b, std::complex<float>* dst,
                       int n);

/** acc[i] += a[i] * b[i], complex. */
IppStatus ippsAddProduct_32fc(const std::complex<float>* a, const std::complex<float>* b,
                              std::complex<float>* acc, int n);

/** dst[i] = atan2(Im, Re) of src[i], radians. */
IppStatus ippsPhase_32fc(const std::complex<float>* src, float* dst, int n);

/** Interleaves; a null im means zero imaginary parts. */
IppStatus ippsRealToCplx_32f(const float* re, const float* im, std::complex<float>* dst, int n);

/** Below levelLow gives valueLow, above levelHigh gives valueHigh, else the sample. levelLow above levelHigh
    gives ippStsThresholdErr. */
IppStatus ippsThreshold_LTValGTVal_32f(const float* src, float* dst, int n, float levelLow, float valueLow,
                                       float levelHigh, float valueHigh);

/** Writes srcLength * factor samples: sample i at index i * factor + *phase, zeros elsewhere. *dstLength is
    set, *phase stays. Needs factor above 0 and 0 <= *phase < factor. Not in place. */
IppStatus ippsSampleUp_32f(const float* src, int srcLength, float* dst, int* dstLength, int factor,
                           int* phase);

/** dst[i] = src[i * factor + *phase] for all indices below srcLength; *dstLength is set to the number
    written. */
IppStatus ippsSampleDown_32f(const float* src, int srcLength, float* dst, int* dstLength, int factor,
                             int* phase);

//==============================================================================
// Fourier transform of length N = 2^order.
//
// A spectrum of N real samples is in CCS layout: N/2 + 1 complex bins, bin 0 (DC) to bin N/2 (Nyquist); the
// imaginary parts of these two are zero. No direction scales: forward then inverse gives N times the input.

inline constexpr int ippFftNoScaling = 8;
inline constexpr int ippHintFast = 1;

/** The largest order that the transforms take. */
inline constexpr int ippMaxFftOrder = 26;

/** Tables of one transform length, laid out in the memory handed to the init kernel. Read-only in use. */
struct FftSpec;

IppStatus ippsFFTGetSize_R_32f(int order, int flag, int hint, int* specBytes, int* initBytes, int* workBytes);
IppStatus ippsFFTGetSize_C_32fc(int order, int flag, int hint, int* specBytes, int* initBytes,
                                int* workBytes);

/** Builds the tables in specMemory (specBytes long, any alignment) and sets *spec. initBuffer is not needed
    and may be null. */
IppStatus ippsFFTInit_R_32f(FftSpec** spec, int order, int flag, int hint, std::uint8_t* specMemory,
                            std::uint8_t* initBuffer);
IppStatus ippsFFTInit_C_32fc(FftSpec** spec, int order, int flag, int hint, std::uint8_t* specMemory,
                             std::uint8_t* initBuffer);

/** X[k] = sum over n of x[n] exp(-2 pi j k n / N), N/2 + 1 bins in CCS layout.
    @param work  workBytes of scratch, any alignment. src and dst may be the same memory. */
IppStatus ippsFFTFwd_RToCCS_32f(const float* src, std::complex<float>* dst, const FftSpec* spec,
                                std::uint8_t* work);

/** The inverse of the above, without division by N. The imaginary parts of bins 0 and N/2 are not read. */
IppStatus ippsFFTInv_CCSToR_32f(const std::complex<float>* src, float* dst, const FftSpec* spec,
                                std::uint8_t* work);

/** Complex transform of points in two arrays, of a specification for complex points. Exchanging the real and
    the imaginary array on both sides gives the inverse, without division by N. In place is fine. */
IppStatus ippsFFTFwd_CToC_32f(const float* srcRe, const float* srcIm, float* dstRe, float* dstIm,
                              const FftSpec* spec, std::uint8_t* work);

/** The spectrum of left + j right, two real signals of N samples: N + 1 bins in two arrays, the last one a repetition
    of bin 0. */
template <typename T>
struct StereoSpectrum
{
    T* re;
    T* im;
};

/** Bins in a block of separated spectra. */
inline constexpr int separatedBlock = 16;

/** Values of separated spectra, that is of those of two real signals of N = 2 half samples. What meets in a product lies
    side by side: each block holds left.re, left.im, right.re and right.im of its bins, and behind the blocks of bins 0
    to half - 1 stand the two values of the middle bin, which is real. */
constexpr int getSeparatedLength(int half)
{
    return ((half + separatedBlock - 1) / separatedBlock + 1) * 4 * separatedBlock;
}

/** dst = twice the spectra of the two signals.
    @param dst   getSeparatedLength(half) values, aligned to 64 bytes */
IppStatus separateStereoSpectrum_32f(StereoSpectrum<const float> src, float* dst, int half);

/** Separated spectra, and those of the responses that filter them: from both inputs to the left output, and from both
    to the right one. Without the latter each channel is filtered by itself, through its part of the former. All are
    aligned to 64 bytes. */
struct StereoTerm
{
    const float* src;
    const float* toLeft;
    const float* toRight = nullptr;
};

/** dst = the sum of the terms, each filtered, or dst += that sum; N = 2 half. Either all terms have both responses or
    none. What is left in dst's last bin means nothing.
    @param terms  not empty */
IppStatus filterStereoSpectra_32f(std::span<const StereoTerm> terms, StereoSpectrum<float> dst, int half,
                                  bool accumulate);

//==============================================================================
// FIR filters, single rate, direct form.

inline constexpr int ippFirDirectForm = 1;
inline constexpr int ippDataType32f = 13;

/** Taps of one direct-form filter. */
struct FirSpec;

IppStatus ippsFIRSRGetSize(int tapsLength, int dataType, int* specBytes, int* bufferBytes);

/** Loads the taps; taps[0] multiplies the newest sample. May be repeated on the same memory for new taps of
    the same length. spec points to specBytes of memory, any alignment. */
IppStatus ippsFIRSRInit_32f(const float* taps, int tapsLength, int algorithm, FirSpec* spec);

/** dst[i] = sum over k of taps[k] x[i - k].
    @param dlySrc  the tapsLength - 1 samples before src[0], oldest first; null means zeros
    @param dlyDst  if not null, receives the last tapsLength - 1 inputs in the same order, after all reads of
                   dlySrc, so that the two may be the same array
    @param buffer  bufferBytes of scratch, any alignment */
IppStatus ippsFIRSR_32f(const float* src, float* dst, int n, const FirSpec* spec, const float* dlySrc,
                        float* dlyDst, std::uint8_t* buffer);

/** A block to be filtered, with the tapsLength - 1 samples before it in the same array. */
struct FirInput
{
    const float* block;
    const FirSpec* spec;
};

/** The sum of the filtered inputs, whose filters have equally many taps. Not in place. */
IppStatus firSum_32f(std::span<const FirInput> inputs, float* dst, int n);

//==============================================================================
// IIR filters: y[i] = (sum b[k] x[i-k] - sum over k >= 1 of a[k] y[i-k]) / a0.
//
// Transposed direct form II, so that a filter keeps running without a jump when its delay values are handed
// to new taps. taps holds 2 (order + 1) values: b0 ... b_order, a0 ... a_order. A zero a0 gives
// ippStsDivByZeroErr.

struct IirState32;
struct IirState64;

IppStatus ippsIIRGetStateSize_32f(int order, int* bytes);
IppStatus ippsIIRGetStateSize_64f(int order, int* bytes);

/** Builds a state in buffer (any alignment) and sets *state. delayLine holds order values; null means zeros. */
IppStatus ippsIIRInit_32f(IirState32** state, const float* taps, int order, const float* delayLine,
                          std::uint8_t* buffer);
IppStatus ippsIIRInit_64f(IirState64** state, const double* taps, int order, const double* delayLine,
                          std::uint8_t* buffer);

/** Reads the order delay values. */
IppStatus ippsIIRGetDlyLine_32f(const IirState32* state, float* dst);
IppStatus ippsIIRGetDlyLine_64f(const IirState64* state, double* dst);

/** Sets the delay values; null means zeros. */
IppStatus ippsIIRSetDlyLine_32f(IirState32* state, const float* src);

/** Filters n samples, in place if wanted, and updates the delay values. */
IppStatus ippsIIR_32f(const float* src, float* dst, int n, IirState32* state);
IppStatus ippsIIR_64f(const double* src, double* dst, int n, IirState64* state);

//==============================================================================
// Random numbers.
//
// Counter based: value number i of a sequence depends on the parameters, the seed and i alone, so a sequence
// is the same on every platform and however it is cut into calls.

struct RandomGaussState;
struct RandomUniformState;

IppStatus ippsRandGaussGetSize_32f(int* bytes);
IppStatus ippsRandUniformGetSize_32f(int* bytes);
IppStatus ippsRandGaussInit_32f(RandomGaussState* state, float mean, float stdDev, unsigned seed);
IppStatus ippsRandUniformInit_32f(RandomUniformState* state, float low, float high, unsigned seed);
IppStatus ippsRandGauss_32f(float* dst, int n, RandomGaussState* state);
IppStatus ippsRandUniform_32f(float* dst, int n, RandomUniformState* state);

} // namespace vesk::audio
