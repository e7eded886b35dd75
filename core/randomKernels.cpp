// The random sequences' public face: seeds and positions. The routines are in kernels/Random-inl.h.

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
