/**
    Vector helpers above the kernels: copying, tones, and the random layer.

    All raise std::runtime_error ("IPP exception: ...") if a kernel fails, and do nothing for counts below 1.
*/
#pragma once

#include <cstdint>

namespace vesk::vo
{

/** Copies n elements. T is float, double or std::complex<float>. */
template <typename T>
void copy(const T* src, T* dst, int n);

/** magnitude * cos(2 pi frequency n + phase) for count samples. A magnitude that is not above 0 gives zeros
    and leaves phase alone.
    @param frequency  cycles per sample, 0 up to below 0.5
    @param phase      radians; advanced to the sample after the last */
void generateSinusoidal(float magnitude, float frequency, float& phase, float* destination, int count);

enum RandomDistribution : std::int32_t
{
    Uniform = 0,
    Gaussian = 1
};

/** A generator of random values. Plain record: who makes it frees generator with ippsFree. */
struct RandomState
{
    void* generator = nullptr;
    RandomDistribution distribution = Gaussian;
};

/** A generator with standard deviation scale, for both distributions.
    @throws std::invalid_argument for an unknown distribution */
RandomState initializeRandomGenerator(RandomDistribution distribution, float scale, unsigned int seed);

/** The next count values. Does nothing for an unknown distribution. */
void generateRandomValues(RandomState state, float* destination, int count);

} // namespace vesk::vo
