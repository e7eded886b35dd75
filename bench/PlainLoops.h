/**
    The kernels' operations as plain loops, as anyone would write them first. They are compiled with -O3 for the
    baseline of the build, so the compiler vectorises what it can.
*/
#pragma once

#include <complex>
#include <cstddef>

namespace vesk::audio::bench::plain
{

void add(const float* a, const float* b, float* dst, std::size_t n);
void multiply(const float* a, const float* b, float* dst, std::size_t n);
void scale(const float* src, float factor, float* dst, std::size_t n);
void divide(const float* a, const float* b, float* dst, std::size_t n);
float findMaximum(const float* src, std::size_t n);
void threshold(const float* src, float* dst, std::size_t n, float low, float lowValue, float high,
               float highValue);
void multiplyComplex(const std::complex<float>* a, const std::complex<float>* b, std::complex<float>* dst,
                     std::size_t n);
void addProductComplex(const std::complex<float>* a, const std::complex<float>* b,
                       std::complex<float>* accumulator, std::size_t n);
void polarToCartesian(const float* magnitude, const float* phase, std::complex<float>* dst, std::size_t n);
void phase(const std::complex<float>* src, float* dst, std::size_t n);
void toDouble(const float* src, double* dst, std::size_t n);
void toFloat(const double* src, float* dst, std::size_t n);
void tone(float* dst, std::size_t n, float magnitude, float frequency, float startPhase);

/** history points at the block's first sample; numTaps - 1 samples before it are valid. */
void fir(const float* history, float* dst, std::size_t n, const float* taps, std::size_t numTaps);

/** Transposed direct form II with a0 = 1; taps are b0, b1, a1 and b0, b1, b2, a1, a2; z is the delay. */
template <typename T>
void onePole(const T* src, T* dst, std::size_t n, const T* taps, T* z);
template <typename T>
void twoPole(const T* src, T* dst, std::size_t n, const T* taps, T* z);

} // namespace vesk::audio::bench::plain
