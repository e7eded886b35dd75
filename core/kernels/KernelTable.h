/**
    What one instruction set brings: a table of the vector routines behind core/kernels.h.

    The routines stand in the *-inl.h files beside this one. VectorKernels.cpp compiles them once for each
    instruction set and fills one table each; ippInit chooses the table that the public face calls through. The
    routines trust their arguments: checks are made at that face.

    To add a routine: declare it here, write it in an -inl.h file, name it in VectorKernels.cpp.
*/
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>
#include <span>

namespace vesk::audio
{
struct FeedbackFrame;
struct FeedbackLines;
struct FirInput;
struct MovingRead;
struct StereoTerm;
template <typename T>
struct StereoSpectrum;
} // namespace vesk::audio

namespace vesk::audio::kernels
{

using Complex = std::complex<float>;

struct FftTables;
template <typename T>
struct RecursiveFilter;

struct KernelTable
{
    const char* name;

    void (*set32)(float value, float* dst, std::size_t n);
    void (*set64)(double value, double* dst, std::size_t n);
    void (*add)(const float* a, const float* b, float* dst, std::size_t n);
    void (*subtract)(const float* a, const float* b, float* dst, std::size_t n);
    void (*multiply)(const float* a, const float* b, float* dst, std::size_t n);
    void (*scale)(const float* src, float factor, float* dst, std::size_t n);
    bool (*divide)(const float* divisor, const float* dividend, float* dst, std::size_t n);
    void (*copyBounded)(const float* src, float limit, float* dst, std::size_t n);
    float (*maximum)(const float* src, std::size_t n);
    void (*threshold)(const float* src, float* dst, std::size_t n, float low, float lowValue, float high,
                      float highValue);
    void (*toDouble)(const float* src, double* dst, std::size_t n);
    void (*toFloat)(const double* src, float* dst, std::size_t n);

    void (*multiplyComplex)(const Complex* a, const Complex* b, Complex* dst, std::size_t n);
    void (*addProductComplex)(const Complex* a, const Complex* b, Complex* accumulator, std::size_t n);
    void (*polarToCartesian)(const float* magnitude, const float* phase, Complex* dst, std::size_t n);
    void (*phase)(const Complex* src, float* dst, std::size_t n);
    void (*interleave)(const float* re, const float* im, Complex* dst, std::size_t n);

    /** Lanes of a float vector: tables of transforms and filters are laid out for it. */
    std::size_t lanes;

    void (*forwardRealTransform)(const float* src, Complex* dst, const FftTables& tables, float* work);
    void (*inverseRealTransform)(const Complex* src, float* dst, const FftTables& tables, float* work);
    void (*complexTransform)(const float* srcRe, const float* srcIm, float* dstRe, float* dstIm,
                             const FftTables& tables, float* work);
    void (*separateStereo)(StereoSpectrum<const float> z, float* dst, std::size_t half);
    void (*filterStereo)(std::span<const StereoTerm> terms, StereoSpectrum<float> w, std::size_t half,
                         bool accumulate);

    /** The sum of the filtered inputs, at least one, all with filters of one length. */
    void (*fir)(const FirInput* inputs, std::size_t count, float* dst, std::size_t n);

    void (*recursive32)(const float* src, float* dst, std::size_t n, RecursiveFilter<float>& filter);
    void (*recursive64)(const double* src, double* dst, std::size_t n, RecursiveFilter<double>& filter);

    void (*feedbackFrame)(FeedbackLines& lines, const FeedbackFrame& frame);

    void (*upsampleByTwo)(const float* src, float* dst, std::size_t n, const float* taps);
    void (*readMoving)(const MovingRead& read, std::span<const float* const> lines,
                       std::span<float* const> outputs);

    /** Values of randomBlockLength from value number randomBlockLength * block on. */
    void (*gaussianBlock)(float* dst, std::uint64_t block, std::uint64_t key, float mean,
                          float standardDeviation);
    void (*uniformBlock)(float* dst, std::uint64_t block, std::uint64_t key, float low, float high);
};

inline constexpr std::size_t randomBlockLength = 64;

/** The table in force: the build's baseline until ippInit has run. */
const KernelTable& getKernels();

/** All tables that this processor can run, the best one first. */
std::span<const KernelTable* const> getAvailableKernels();

/** Puts a table in force, for tests and benchmarks. Specifications and states keep the table they were made
    with. Thread: while no kernel runs. */
void selectKernels(const KernelTable& table);

} // namespace vesk::audio::kernels
