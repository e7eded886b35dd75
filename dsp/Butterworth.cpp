#include "dsp/Butterworth.h"

#include "core/MathEx.h"
#include "core/kernels.h"

#include <algorithm>
#include <cmath>

namespace vesk::audio
{

namespace
{
/** A shelf's low-pass or high-pass is lifted at its cut-off by at most this, in dB. */
constexpr float maximumGainAtCutoff = 48.0f;

using PassEvaluation = Signal32 (*)(const std::vector<float>&, float, float, float);

/** The magnitude response over r, the frequency's distance from the cut-off towards the stop band as a ratio. */
class PassResponse
{
public:
    PassResponse(float order, float gainAtCutoff)
        : halfOrder(0.5 * static_cast<double>(order)),
          c(2.0f / MathEx::fromDecibel(gainAtCutoff + gainAtCutoff) - 2.0f)
    {
    }

    float operator()(float ratio) const
    {
        // Grouped so that an overflow of the power gives 0 also for c = 0.
        const double power = std::pow(static_cast<double>(ratio * ratio), halfOrder);
        return static_cast<float>(1.0 / std::sqrt((power + static_cast<double>(c)) * power + 1.0));
    }

private:
    double halfOrder;
    float c;
};

template <typename ToGain>
Signal32 evaluate(const std::vector<float>& frequencies, ToGain toGain)
{
    Signal32 gains(1, static_cast<int>(frequencies.size()));
    std::transform(frequencies.begin(), frequencies.end(), gains.getWriteChannelPtr(0), toGain);
    return gains;
}

Signal32 evaluateShelfFilter(PassEvaluation evaluatePass, const std::vector<float>& frequencies, float gain,
                             float cutoff, float order, float gainOffset)
{
    const float height = MathEx::fromDecibel(std::abs(gain)) - 1.0f;
    const float heightAtCutoff = MathEx::fromDecibel(std::abs(gain) + gainOffset) - 1.0f;
    const float gainAtCutoff = std::min(MathEx::toDecibel(heightAtCutoff / height), maximumGainAtCutoff);

    // At 0 dB the height is 0 and the curve NaN; the product is nonetheless 0, as scaling by 0 writes zeros.
    const Signal32 ones(1, static_cast<int>(frequencies.size()), 1.0f);
    Signal32 boost = ones + height * evaluatePass(frequencies, cutoff, order, gainAtCutoff);
    if (gain > 0.0f || boost.numSamples < 1)
        return boost;

    auto* gains = boost.getWriteChannelPtr(0);
    check(ippsDiv_32f(gains, ones.getChannelPtr(0), gains, boost.numSamples));
    return boost;
}
} // namespace

Signal32 Butterworth::evaluateLowPassFilter(const std::vector<float>& frequencies, float cutoff, float order,
                                            float gainAtCutoff)
{
    const PassResponse response(order, gainAtCutoff);
    return evaluate(frequencies, [=](float frequency) { return response(frequency / cutoff); });
}

Signal32 Butterworth::evaluateHighPassFilter(const std::vector<float>& frequencies, float cutoff, float order,
                                             float gainAtCutoff)
{
    const PassResponse response(order, gainAtCutoff);
    return evaluate(frequencies,
                    [=](float frequency) { return frequency > 0.0f ? response(cutoff / frequency) : 0.0f; });
}

Signal32 Butterworth::evaluateLowShelfFilter(const std::vector<float>& frequencies, float gain, float cutoff,
                                             float order, float gainOffset)
{
    return evaluateShelfFilter(evaluateLowPassFilter, frequencies, gain, cutoff, order, gainOffset);
}

Signal32 Butterworth::evaluateHighShelfFilter(const std::vector<float>& frequencies, float gain, float cutoff,
                                              float order, float gainOffset)
{
    return evaluateShelfFilter(evaluateHighPassFilter, frequencies, gain, cutoff, order, gainOffset);
}

} // namespace vesk::audio
