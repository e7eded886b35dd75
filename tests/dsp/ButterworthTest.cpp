#include "dsp/Butterworth.h"

#include "tests/dsp/Measures.h"

#include <gtest/gtest.h>

using namespace vesk::audio;
using namespace vesk::audio::test;

namespace
{
double toLinear(double decibels) { return std::pow(10.0, decibels / 20.0); }
} // namespace

TEST(Butterworth, PassFiltersMirrorEachOther)
{
    struct Row
    {
        float ratio; ///< frequency over cut-off, of the low-pass
        float order;
        float gainAtCutoff; ///< dB
        double gain;
        double tolerance;
    };
    const Row rows[] = {
        {0.0f, 2.0f, 0.0f, 1.0, 0.0},
        {1.0f, 2.0f, 0.0f, 0.70710678, 1e-7},
        {1.0f, 0.7f, 0.0f, 0.70710678, 1e-7},
        {1.0f, 2.0f, 6.0f, 0.70710678 * toLinear(6.0), 1e-5},
        {1.0f, 3.0f, -9.0f, 0.70710678 * toLinear(-9.0), 1e-5},
        {2.0f, 1.0f, 0.0f, 1.0 / std::sqrt(5.0), 1e-7},
        {0.5f, 1.5f, 0.0f, 1.0 / std::sqrt(1.125), 1e-7},
        {64.0f, 1.5f, 0.0f, 1.0 / 512.0, 1e-8}, // 9 dB for each of 6 octaves
        {1e15f, 4.0f, 0.0f, 0.0, 1e-30},
    };
    constexpr float cutoff = 1000.0f;
    for (const auto& row : rows)
    {
        SCOPED_TRACE(testing::Message()
                     << row.ratio << ", order " << row.order << ", " << row.gainAtCutoff << " dB");
        const auto low =
            Butterworth::evaluateLowPassFilter({row.ratio * cutoff}, cutoff, row.order, row.gainAtCutoff);
        EXPECT_NEAR(low.getChannelPtr(0)[0], row.gain, row.tolerance);
        if (row.ratio > 0.0f)
        {
            const auto high = Butterworth::evaluateHighPassFilter({cutoff / row.ratio}, cutoff, row.order,
                                                                  row.gainAtCutoff);
            EXPECT_NEAR(high.getChannelPtr(0)[0], row.gain, row.tolerance + 1e-6 * row.gain);
        }
    }

    const auto stopped = Butterworth::evaluateHighPassFilter({-1.0f, 0.0f, 1e-30f}, cutoff, 2.0f, 0.0f);
    EXPECT_EQ(toVector(stopped, 0), std::vector<float>(3, 0.0f));
    EXPECT_EQ(Butterworth::evaluateLowShelfFilter({}, -6.0f, cutoff, 2.0f, 0.0f).numSamples, 0);
}

TEST(Butterworth, ShelvesReachTheirGainAndCutsAreReciprocalBoosts)
{
    const std::vector<float> frequencies = {0.0f, 1.0f, 300.0f, 1000.0f, 2500.0f, 24000.0f, 1e8f};
    struct Row
    {
        float gain;   ///< dB
        float offset; ///< dB
    };
    for (const auto& row : {Row{6.0f, 0.0f}, Row{24.0f, 0.0f}, Row{12.0f, -3.0f}, Row{0.5f, 0.0f}})
        for (const auto evaluate :
             {Butterworth::evaluateLowShelfFilter, Butterworth::evaluateHighShelfFilter})
        {
            const bool isLow = evaluate == Butterworth::evaluateLowShelfFilter;
            SCOPED_TRACE(testing::Message()
                         << (isLow ? "low " : "high ") << row.gain << " dB, " << row.offset);
            const auto boost = evaluate(frequencies, row.gain, 1000.0f, 1.5f, row.offset);
            const auto cut = evaluate(frequencies, -row.gain, 1000.0f, 1.5f, row.offset);
            const auto gains = getChannel(boost, 0);
            const double top = toLinear(static_cast<double>(row.gain));
            EXPECT_NEAR(isLow ? gains.front() : gains.back(), top, 1e-5 * top);
            EXPECT_NEAR(isLow ? gains.back() : gains.front(), 1.0, 1e-4);

            // At the cut-off the half-power point of the part above 1, lifted to the level asked for.
            const double level = toLinear(static_cast<double>(row.gain + row.offset));
            EXPECT_NEAR(gains[3], 1.0 + (level - 1.0) * std::sqrt(0.5), 1e-5 * top);
            for (std::size_t i = 0; i < gains.size(); ++i)
                EXPECT_NEAR(gains[i] * getChannel(cut, 0)[i], 1.0f, 1e-6f);

            const auto flat = evaluate(frequencies, 0.0f, 1000.0f, 1.5f, 0.0f);
            EXPECT_EQ(toVector(flat, 0), std::vector<float>(frequencies.size(), 1.0f));
        }
}
