#include "core/feedbackKernel.h"

#include "core/kernels/KernelTable.h"

#include <cmath>
#include <limits>

namespace vesk::audio
{

namespace
{
/** Leads from a line's shelf states (band, low) to the memory of the transposed direct form II: that is the next output
    without input, and the one after it plus a1 times the next. */
struct ToDirectForm
{
    ToDirectForm(const FeedbackLines::Shelf& shelf, std::size_t line)
    {
        const auto get = [line](const auto& values) { return static_cast<double>(values[line]); };
        const double b = get(shelf.fromBand);
        const double t = get(shelf.toBand);
        const double s = get(shelf.bandStep);
        const double l = get(shelf.lowStep);
        const double a1 = l * t - s; // minus the trace of the states' own matrix
        first[0] = b;
        first[1] = 1.0 - b * t;
        second[0] = first[0] * (s - 1.0) + first[1] * l + a1 * first[0];
        second[1] = first[0] * -s * t + first[1] * (1.0 - l * t) + a1 * first[1];
    }

    double first[2]; ///< what both states add to each
    double second[2];
};
} // namespace

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
    if (shelfTaps != nullptr)
        setShelf(line, gain, *shelfTaps);
}

void FeedbackLines::setShelf(std::size_t line, double gain, const std::array<double, 5>& taps)
{
    const auto& [b0, b1, b2, a1, a2] = taps;
    const ToDirectForm former(shelf, line);

    // The bilinear transform backwards, to the corner g = tan(w / 2) and the damping k.
    const double atZero = 1.0 + a1 + a2; // the denominator at frequency 0
    const double atNyquist = 1.0 - a1 + a2;
    const double g = std::sqrt(atZero / atNyquist);
    const double d = 4.0 / atNyquist; // 1 + g k + g^2
    const double high = gain * (b0 - b1 + b2) / atNyquist;
    const double low = gain * (b0 + b1 + b2) / atZero;
    const double band = gain * (b0 - b2) * d / (2.0 * g);
    const double damping = (d - 1.0 - g * g) / g;
    // The low state is scaled by what it adds to the output, which must not be nothing.
    const double lowShare = low != high ? low - high : gain * std::numeric_limits<double>::epsilon();

    shelf.direct[line] = static_cast<float>(high);
    shelf.fromBand[line] = static_cast<float>(band - high * damping + lowShare * g);
    shelf.input[line] = static_cast<float>(g / d);
    shelf.toBand[line] = static_cast<float>(g / (d * lowShare));
    shelf.bandStep[line] = static_cast<float>(2.0 / d);
    shelf.lowStep[line] = static_cast<float>(2.0 * g * lowShare);

    const ToDirectForm present(shelf, line);
    const double determinant = present.first[0] * present.second[1] - present.first[1] * present.second[0];
    for (auto& state : shelfStates)
    {
        const auto oldBand = static_cast<double>(state.band[line]);
        const auto oldLow = static_cast<double>(state.low[line]);
        if (oldBand == 0.0 && oldLow == 0.0)
            continue; // whatever the former taps were, and whether or not there is a way back
        const double first = former.first[0] * oldBand + former.first[1] * oldLow;
        const double second = former.second[0] * oldBand + former.second[1] * oldLow;
        state.band[line] =
            static_cast<float>((first * present.second[1] - second * present.first[1]) / determinant);
        state.low[line] =
            static_cast<float>((second * present.first[0] - first * present.second[0]) / determinant);
    }
}

void FeedbackLines::clear()
{
    dampingDelays = {};
    shelfStates = {};
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
