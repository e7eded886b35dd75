#include "dsp/Butterworth.h"

#include "tests/dsp/Measures.h"

#include <gtest/gtest.h>

using namespace vesk::audio;
using namespace vesk::audio::test;

namespace
{
constexpr float cutoff = 1000.0f;

double toLinear(float decibels) { return std::pow(10.0, static_cast<double>(decibels) / 20.0); }
} // namespace

TEST(Butterworth, PassFiltersMirrorEachOther)
{
    struct Row
    {
        float ratio; ///< frequency over cut-off for the low-pass
        float order;
        float gainAtCutoff; ///< dB
        double gain;
    };
    for (const auto& row :
         {Row{1e-6f, 2.0f, 0.0f, 1.0}, Row{1.0f, 2.0f, 0.0f, std::sqrt(0.5)},
          Row{1.0f, 0.7f, 0.0f, std::sqrt(0.5)}, Row{1.0f, 2.0f, 6.0f, std::sqrt(0.5) * toLinear(6.0f)},
          Row{0.5f, 1.5f, 0.0f, 1.0 / std::sqrt(1.125)},
          Row{1.0f, 3.0f, -9.0f, std::sqrt(0.5) * toLinear(-9.0f)}, Row{64.0f, 1.5f, 0.0f, 1.0 / 512.0}})
    {
        SCOPED_TRACE(testing::Message()
                     << row.ratio << ", " << row.order << ", " << row.gainAtCutoff << " dB");
        const auto low =
            Butterworth::evaluateLowPassFilter({row.ratio * cutoff}, cutoff, row.order, row.gainAtCutoff);
        const auto high =
            Butterworth::evaluateHighPassFilter({cutoff / row.ratio}, cutoff, row.order, row.gainAtCutoff);
        EXPECT_NEAR(low.getChannelPtr(0)[0], row.gain, 1e-5 * row.gain);
        EXPECT_NEAR(high.getChannelPtr(0)[0], row.gain, 1e-5 * row.gain);
    }
    const auto stopped = Butterworth::evaluateHighPassFilter({-1.0f, 0.0f, 1e-30f}, cutoff, 2.0f, 0.0f);
    EXPECT_EQ(toVector(stopped, 0), std::vector<float>(3, 0.0f));
}

TEST(Butterworth, ShelvesReachTheirGainAndCutsAreReciprocalBoosts)
{
    const std::vector<float> frequencies = {0.0f, 300.0f, cutoff, 2500.0f, 1e8f};
    for (const auto& [gain, offset] :
         {std::pair{6.0f, 0.0f}, {24.0f, 0.0f}, {12.0f, -3.0f}, {0.5f, 0.0f}}) // dB
        for (const auto evaluate :
             {Butterworth::evaluateLowShelfFilter, Butterworth::evaluateHighShelfFilter})
        {
            const bool isLow = evaluate == Butterworth::evaluateLowShelfFilter;
            SCOPED_TRACE(testing::Message() << (isLow ? "low " : "high ") << gain << " dB, " << offset);
            const auto boost = toVector(evaluate(frequencies, gain, cutoff, 1.5f, offset), 0);
            const auto cut = toVector(evaluate(frequencies, -gain, cutoff, 1.5f, offset), 0);
            const double top = toLinear(gain);
            EXPECT_NEAR(isLow ? boost.front() : boost.back(), top, 1e-5 * top);
            EXPECT_NEAR(isLow ? boost.back() : boost.front(), 1.0, 1e-4);

            // At the cut-off the half-power point of the part above 1, lifted to the level asked for.
            EXPECT_NEAR(boost[2], 1.0 + (toLinear(gain + offset) - 1.0) * std::sqrt(0.5), 1e-5 * top);
            for (std::size_t i = 0; i < boost.size(); ++i)
                EXPECT_NEAR(boost[i] * cut[i], 1.0f, 1e-6f);

            const auto flat = evaluate(frequencies, 0.0f, cutoff, 1.5f, 0.0f);
            EXPECT_EQ(toVector(flat, 0), std::vector<float>(frequencies.size(), 1.0f));
        }
}
