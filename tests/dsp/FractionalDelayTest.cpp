#include "dsp/FractionalDelay.h"

#include "tests/dsp/Measures.h"

#include <gtest/gtest.h>

using namespace vesk::audio;
using namespace vesk::audio::test;

namespace
{
constexpr double sampleRate = 48000.0;

/** The interpolator's centre tap, in samples. */
constexpr double interpolatorDelay = 3.5;

void prepare(FractionalDelay& delay, int channels, float baseDelay, ModulationGenerator::ModulationType type,
             float depth, float rate)
{
    delay.setFormat(channels, sampleRate);
    delay.setDelay(baseDelay, type, depth, rate, 0.0f, 0.0f);
    delay.reset();
}
} // namespace

TEST(FractionalDelay, DelaysAsLongAsLineAndModulationSay)
{
    struct Row
    {
        const char* name;
        float baseDelay; ///< s
        float depth;     ///< s
        float rate;      ///< Hz
        double tolerance;
    };
    const Row rows[] = {
        {"least line", 0.0f, 0.0f, 1.0f, 2e-3},
        {"least line less base delay", 0.0001f, 0.0f, 1.0f, 2e-3},
        {"base delay cancels", 0.01f, 0.0f, 1.0f, 2e-3},
        {"modulated", 0.0f, 0.001f, 5.0f, 3e-3},
        {"modulated, with base delay", 0.02f, 0.0031f, 2.0f, 3e-3},
    };
    constexpr int length = 24000;
    constexpr double frequency = 1000.0 / sampleRate;
    const Signal32 sine = makeSine(length, frequency);
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        FractionalDelay delay;
        prepare(delay, 1, row.baseDelay, ModulationGenerator::Sinusoidal, row.depth, row.rate);
        const Signal32 output =
            processInCuts(sine, [&](const Signal32& block) { return delay.process(block); });

        // The output is the sine at the moment that lies the momentary delay back: that of the interpolator and
        // of the line, less the base delay and the modulation.
        const double line = delay.delaySamples / 2.0 - static_cast<double>(delay.delay) * sampleRate;
        double largestError = 0.0;
        for (int n = 1000; n < length; ++n)
        {
            const double swing =
                static_cast<double>(row.depth) * sampleRate *
                std::cos(2.0 * std::numbers::pi * static_cast<double>(row.rate) * n / sampleRate);
            const double moment = n - (interpolatorDelay + line - swing);
            const double expected = std::sin(2.0 * std::numbers::pi * frequency * moment);
            largestError =
                std::max(largestError, std::abs(static_cast<double>(output.getChannelPtr(0)[n]) - expected));
        }
        EXPECT_LT(largestError, row.tolerance);
    }
}

TEST(FractionalDelay, RandomReadIsOneStreamInAnyCutsAndAfterAReset)
{
    constexpr int length = 9000;
    const Signal32 input = makeNoiseSignal(2, length, 3);
    FractionalDelay whole;
    prepare(whole, 2, 0.0f, ModulationGenerator::Random, 0.003f, 1.0f);
    const Signal32 expected = whole.process(input);
    FractionalDelay inCuts;
    prepare(inCuts, 2, 0.0f, ModulationGenerator::Random, 0.003f, 1.0f);
    const Signal32 output =
        processInCuts(input, [&](const Signal32& block) { return inCuts.process(block); });
    for (int c = 0; c < 2; ++c)
        EXPECT_LT(maxDifference(getChannel(output, c), getChannel(expected, c)),
                  4e-3); // positions are floats
    EXPECT_GT(maxDifference(getChannel(output, 0), getChannel(output, 1)), 0.5);

    // After a reset nothing of the past is left, and between depth and three times depth pass before the line's
    // silence is crossed.
    inCuts.reset();
    EXPECT_EQ(meanSquare(getChannel(inCuts.process(Signal32(2, 1000, 0.0f)), 0)), 0.0);
    const Signal32 restarted = inCuts.process(input);
    const auto start = getChannel(restarted, 0);
    EXPECT_EQ(meanSquare(start.first(144)), 0.0);
    EXPECT_GT(meanSquare(start.subspan(440, 100)), 0.1);
    EXPECT_EQ(inCuts.process(Signal32(2, 0)).numSamples, 0);
}

TEST(FractionalDelay, LineFollowsItsSetting)
{
    struct Row
    {
        float baseDelay;
        float depth;
        float kept;       ///< s
        int delaySamples; ///< cut off after a sum of floats: 9 ms are 863
    };
    FractionalDelay delay;
    prepare(delay, 1, 0.0f, ModulationGenerator::Random, 0.003f, 1.0f);
    for (const auto& row : {Row{0.0f, 0.003f, 0.003f, 863}, Row{0.0f, 0.0f, 0.0f, 15},
                            Row{0.01f, 0.001f, 0.01f, 1152}, Row{0.0f, 0.00390625f, 0.00390625f, 1125}})
    {
        EXPECT_EQ(delay.setDelay(row.baseDelay, ModulationGenerator::Random, row.depth, 1.0f, 0.0f, 0.0f),
                  row.kept);
        EXPECT_EQ(delay.delaySamples, row.delaySamples);
        EXPECT_EQ(delay.queue.numSamples, row.delaySamples);
        delay.process(makeNoiseSignal(1, 100, 1));
        EXPECT_EQ(delay.queue.numSamples, row.delaySamples);
    }

    // A shorter line keeps its newest samples: a step that has just entered is the first thing to come.
    prepare(delay, 1, 0.02f, ModulationGenerator::Random, 0.0f, 1.0f);
    delay.process(Signal32(1, 500, 1.0f));
    delay.setDelay(0.0f, ModulationGenerator::Random, 0.0f, 1.0f, 0.0f, 0.0f);
    const Signal32 output = delay.process(Signal32(1, 100, 1.0f));
    for (const float value : getChannel(output, 0))
        EXPECT_NEAR(value, 1.0f, 2e-3f);
}

TEST(FractionalDelay, UnmodulatedReadLeavesNothingUndefined)
{
    FractionalDelay delay;
    prepare(delay, 2, 0.001f, ModulationGenerator::None, 0.0f, 1.0f);
    for (const int length : {256, 1, 7})
    {
        const Signal32 output = delay.process(Signal32(2, length, 1.0f));
        const auto second = getChannel(output, 1).subspan(static_cast<std::size_t>((length + 1) / 2));
        EXPECT_EQ(std::vector<float>(second.begin(), second.end()), std::vector<float>(second.size(), 0.0f));
    }
}
