#include "core/VectorOps.h"

#include "core/kernels.h"

#include <complex>
#include <stdexcept>

namespace vesk::vo
{

using namespace vesk::audio;

template <typename T>
void copy(const T* src, T* dst, int n)
{
    if (n < 1)
        return;
    check(ippsCopy_8u(reinterpret_cast<const std::uint8_t*>(src), reinterpret_cast<std::uint8_t*>(dst),
                      n * static_cast<int>(sizeof(T))));
}

template void copy(const float*, float*, int);
template void copy(const double*, double*, int);
template void copy(const std::complex<float>*, std::complex<float>*, int);

void generateSinusoidal(float magnitude, float frequency, float& phase, float* destination, int count)
{
    if (count < 1)
        return;
    if (magnitude > 0.0f)
        check(ippsTone_32f(destination, count, magnitude, frequency, &phase, ippHintFast));
    else
        check(ippsZero_32f(destination, count));
}

//==============================================================================

namespace
{
void* allocateState(int bytes)
{
    auto* memory = ippMalloc(bytes);
    check(memory != nullptr ? ippStsNoErr : ippStsMemAllocErr);
    return memory;
}
} // namespace

RandomState initializeRandomGenerator(RandomDistribution distribution, float scale, unsigned int seed)
{
    int bytes = 0;
    switch (distribution)
    {
    case Gaussian:
    {
        check(ippsRandGaussGetSize_32f(&bytes));
        auto* memory = allocateState(bytes);
        check(ippsRandGaussInit_32f(static_cast<RandomGaussState*>(memory), 0.0f, scale, seed));
        return {memory, distribution};
    }
    case Uniform:
    {
        constexpr float squareRootOf3 = 1.7320508f;
        const float limit = scale * squareRootOf3;
        check(ippsRandUniformGetSize_32f(&bytes));
        auto* memory = allocateState(bytes);
        check(ippsRandUniformInit_32f(static_cast<RandomUniformState*>(memory), -limit, limit, seed));
        return {memory, distribution};
    }
    }
    throw std::invalid_argument("Unknown random distribution in call to initializeRandomGenerator.");
}

void generateRandomValues(RandomState state, float* destination, int count)
{
    if (count < 1)
        return;
    if (state.distribution == Gaussian)
        check(ippsRandGauss_32f(destination, count, static_cast<RandomGaussState*>(state.generator)));
    else if (state.distribution == Uniform)
        check(ippsRandUniform_32f(destination, count, static_cast<RandomUniformState*>(state.generator)));
}

} // namespace vesk::vo
