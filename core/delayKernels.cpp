#include "core/delayKernels.h"

#include "core/kernels/KernelTable.h"

namespace vesk::audio
{

IppStatus upsampleByTwo_32f(const float* src, float* dst, int n, const float* taps)
{
    if (src == nullptr || dst == nullptr || taps == nullptr)
        return ippStsNullPtrErr;
    if (n < 1)
        return ippStsSizeErr;
    kernels::getKernels().upsampleByTwo(src, dst, static_cast<std::size_t>(n), taps);
    return ippStsNoErr;
}

IppStatus readMoving_32f(const MovingRead& read, std::span<const float* const> lines,
                         std::span<float* const> outputs)
{
    if (read.offsets == nullptr)
        return ippStsNullPtrErr;
    if (read.samples < 1 || read.lineLength < 2 || lines.size() != outputs.size())
        return ippStsSizeErr;
    kernels::getKernels().readMoving(read, lines, outputs);
    return ippStsNoErr;
}

} // namespace vesk::audio
