#include "core/feedbackKernel.h"

#include "core/kernels/KernelTable.h"

#include <cmath>

namespace vesk::audio
{

void FeedbackLines::setLine(std::size_t line, double gain, double pole,
                            const std::array<double, 5>* shelfTaps)
{
    for (std::size_t step = 0; step < maxSteps; ++step)
        for (std::size_t lane = 0; lane < maxLanes; ++lane)
        {
            const std::size_t half = std::size_t{1} << step;
            const std::size_t distance = lane % half + 1;
            const bool inUpperHalf = lane / half % 2 == 1;
            steps[line][step][lane] =
                inUpperHalf ? static_cast<float>(std::pow(pole, static_cast<double>(distance))) : 0.0f;
        }
    for (std::size_t lane = 0; lane < maxLanes; ++lane)
        steps[line][maxSteps][lane] = static_cast<float>(std::pow(pole, static_cast<double>(lane)));

    shelfActive = shelfTaps != nullptr;
    inputGains[line] = static_cast<float>(shelfActive ? 1.0 - pole : gain * (1.0 - pole));
    poles[line] = static_cast<float>(pole);
    if (shelfTaps == nullptr)
        return;
    const auto& [b0, b1, b2, a1, a2] = *shelfTaps;
    shelf[0][line] = gain * b0;
    shelf[1][line] = gain * b1;
    shelf[2][line] = gain * b2;
    shelf[3][line] = a1;
    shelf[4][line] = a2;
}

void FeedbackLines::clear()
{
    dampingDelays = {};
    shelfDelays = {};
}

IppStatus runFeedbackFrame_32f(FeedbackLines& lines, const FeedbackFrame& frame)
{
    if (frame.numChannels != 1 && frame.numChannels != 2 && frame.numChannels != 4)
        return ippStsBadArgErr;
    if (frame.length < 1)
        return ippStsSizeErr;
    kernels::getKernels().feedbackFrame(lines, frame);
    return ippStsNoErr;
}

} // namespace vesk::audio
