#include "bench/PlainLoops.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vesk::audio::bench::plain
{

void add(const float* a, const float* b, float* dst, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i)
        dst[i] = a[i] + b[i];
}

void multiply(const float* a, const float* b, float* dst, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i)
        dst[i] = a[i] * b[i];
}

void scale(const float* src, float factor, float* dst, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i)
        dst[i] = src[i] * factor;
}

void divide(const float* a, const float* b, float* dst, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i)
        dst[i] = b[i] / a[i];
}

float findMaximum(const float* src, std::size_t n) { return *std::max_element(src, src + n); }

void threshold(const float* src, float* dst, std::size_t n, float low, float lowValue, float high,
               float highValue)
{
    for (std::size_t i = 0; i < n; ++i)
        dst[i] = src[i] < low ? lowValue : src[i] > high ? highValue : src[i];
}

// Written out: the library's product of complex numbers looks for NaNs.

void multiplyComplex(const std::complex<float>* a, const std::complex<float>* b, std::complex<float>* dst,
                     std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i)
        dst[i] = {a[i].real() * b[i].real() - a[i].imag() * b[i].imag(),
                  a[i].real() * b[i].imag() + a[i].imag() * b[i].real()};
}

void addProductComplex(const std::complex<float>* a, const std::complex<float>* b,
                       std::complex<float>* accumulator, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i)
        accumulator[i] = {accumulator[i].real() + a[i].real() * b[i].real() - a[i].imag() * b[i].imag(),
                          accumulator[i].imag() + a[i].real() * b[i].imag() + a[i].imag() * b[i].real()};
}

void polarToCartesian(const float* magnitude, const float* angle, std::complex<float>* dst, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i)
        dst[i] = {magnitude[i] * std::cos(angle[i]), magnitude[i] * std::sin(angle[i])};
}

void phase(const std::complex<float>* src, float* dst, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i)
        dst[i] = std::atan2(src[i].imag(), src[i].real());
}

void toDouble(const float* src, double* dst, std::size_t n) { std::copy_n(src, n, dst); }

void toFloat(const double* src, float* dst, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i)
        dst[i] = static_cast<float>(src[i]);
}

void tone(float* dst, std::size_t n, float magnitude, float frequency, float startPhase)
{
    const double step = 2.0 * std::numbers::pi * static_cast<double>(frequency);
    for (std::size_t i = 0; i < n; ++i)
        dst[i] = magnitude * std::cos(static_cast<float>(step * static_cast<double>(i)) + startPhase);
}

void fir(const float* history, float* dst, std::size_t n, const float* taps, std::size_t numTaps)
{
    for (std::size_t i = 0; i < n; ++i)
    {
        float sum = 0.0f;
        const float* newest = history + i;
        for (std::size_t k = 0; k < numTaps; ++k)
            sum += taps[k] * *(newest - k);
        dst[i] = sum;
    }
}

template <typename T>
void onePole(const T* src, T* dst, std::size_t n, const T* taps, T* z)
{
    T z0 = z[0];
    for (std::size_t i = 0; i < n; ++i)
    {
        const T x = src[i];
        const T y = taps[0] * x + z0;
        z0 = taps[1] * x - taps[2] * y;
        dst[i] = y;
    }
    z[0] = z0;
}

template <typename T>
void twoPole(const T* src, T* dst, std::size_t n, const T* taps, T* z)
{
    T z0 = z[0], z1 = z[1];
    for (std::size_t i = 0; i < n; ++i)
    {
        const T x = src[i];
        const T y = taps[0] * x + z0;
        z0 = taps[1] * x - taps[3] * y + z1;
        z1 = taps[2] * x - taps[4] * y;
        dst[i] = y;
    }
    z[0] = z0;
    z[1] = z1;
}

template void onePole(const float*, float*, std::size_t, const float*, float*);
template void onePole(const double*, double*, std::size_t, const double*, double*);
template void twoPole(const float*, float*, std::size_t, const float*, float*);
template void twoPole(const double*, double*, std::size_t, const double*, double*);

} // namespace vesk::audio::bench::plain
