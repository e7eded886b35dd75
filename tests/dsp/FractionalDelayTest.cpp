#include "dsp/FractionalDelay.h"

#include "tests/core/KernelFixture.h"
#include "tests/dsp/Measures.h"

#include <gtest/gtest.h>

using namespace vesk::audio;
using namespace vesk::audio::test;

namespace
{
constexpr double sampleRate = 48000.0;

void prepare(FractionalDelay& delay, int channels, float baseDelay, ModulationGenerator::ModulationType type,
             float depth, float rate)
{
    delay.setFormat(channels, sampleRate);
    delay.setDelay(baseDelay, type, depth, rate, 0.0f, 0.0f);
    delay.reset();
}
} // namespace

class FractionalDelayKernel : public KernelFixture
{
};
AMBREL_ON_ALL_INSTRUCTION_SETS(FractionalDelayKernel);

TEST_P(FractionalDelayKernel, DelaysAsLongAsLineAndModulationSay)
{
    struct Row
    {
        float baseDelay; ///< s
        float depth;     ///< s
        float rate;      ///< Hz
        float kept;      ///< s
        int line; ///< oversampled samples, at least 15; cut off after a sum of floats, so 960 may be 959
    };
    constexpr int length = 24000;
    constexpr double step = 2.0 * std::numbers::pi * 1000.0 / sampleRate;
    Signal32 sine(1, length);
    for (int n = 0; n < length; ++n)
        sine.getWriteChannelPtr(0)[n] = static_cast<float>(std::sin(step * n));

    FractionalDelay delay;
    for (const auto& row : {Row{0.0f, 0.0f, 1.0f, 0.0f, 15}, Row{0.0001f, 0.0f, 1.0f, 0.0001f, 15},
                            Row{0.01f, 0.0f, 1.0f, 0.01f, 959}, Row{0.0f, 0.001f, 5.0f, 0.001f, 288},
                            Row{0.02f, 0.0031f, 2.0f, 0.02f, 2515}})
    {
        SCOPED_TRACE(testing::Message() << row.baseDelay << " s, depth " << row.depth << " s");
        prepare(delay, 1, row.baseDelay, ModulationGenerator::Sinusoidal, row.depth, row.rate);
        EXPECT_EQ(delay.delay, row.kept);
        EXPECT_EQ(delay.queue.numSamples, row.line);
        const Signal32 output =
            processInCuts(sine, [&](const Signal32& block) { return delay.process(block); });

        // The output is the sine at the moment that lies the momentary delay back: that of the interpolator's
        // centre tap and of the line, less the base delay and the modulation.
        std::vector<double> expected(length);
        for (int n = 0; n < length; ++n)
        {
            const double angle = 2.0 * std::numbers::pi * static_cast<double>(row.rate) * n / sampleRate;
            const double swing = static_cast<double>(row.depth) * std::cos(angle);
            const double late = 3.5 + row.line / 2.0 - (static_cast<double>(row.kept) + swing) * sampleRate;
            expected[static_cast<std::size_t>(n)] = std::sin(step * (n - late));
        }
        EXPECT_LT(maxDifference(getChannel(output, 0).subspan(2000), std::span(expected).subspan(2000)),
                  3e-3);
    }
}

TEST(FractionalDelay, RandomReadIsOneStreamInAnyCutsAndAfterAReset)
{
    const Signal32 input = makeNoiseSignal(2, 9000, 3);
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
    EXPECT_LT(getCorrelation(getChannel(output, 0), getChannel(output, 1)), 0.1);

    // Nothing of the past is left, and silence of depth to three times depth has to be crossed.
    inCuts.reset();
    EXPECT_EQ(getPeak(getChannel(inCuts.process(Signal32(2, 1000, 0.0f)), 0)), 0.0);
    const Signal32 restarted = inCuts.process(input);
    EXPECT_EQ(getPeak(getChannel(restarted, 0).first(144)), 0.0);
    EXPECT_GT(getLevel(getChannel(restarted, 0).subspan(440, 100)), -10.0);
    EXPECT_EQ(inCuts.process(Signal32(2, 0)).numSamples, 0);
}

TEST_P(FractionalDelayKernel, LineIsTheInterpolatorsOutput)
{
    FractionalDelay delay;
    prepare(delay, 2, 0.0f, ModulationGenerator::Random, 0.003f, 1.0f);
    const Signal32 input = makeNoiseSignal(2, 400, 5);
    processInCuts(input, [&](const Signal32& block) { return delay.process(block); });
    const Signal32 line = delay.queue.peek(delay.delaySamples - 800, 800);

    Signal32 spaced(2, 800, 0.0f);
    for (int c = 0; c < 2; ++c)
        for (int i = 0; i < 400; ++i)
            spaced.getWriteChannelPtr(c)[2 * i] = input.getChannelPtr(c)[i];
    const Signal32 expected = delay.interpolator.process(spaced);
    for (int c = 0; c < 2; ++c)
        EXPECT_LT(maxDifference(getChannel(line, c), getChannel(expected, c)), 1e-6);
}

TEST(FractionalDelay, ShorterLineKeepsItsNewestSamples)
{
    FractionalDelay delay;
    prepare(delay, 1, 0.02f, ModulationGenerator::Random, 0.0f, 1.0f);
    delay.process(Signal32(1, 500, 1.0f));
    delay.setDelay(0.0f, ModulationGenerator::Random, 0.0f, 1.0f, 0.0f, 0.0f);
    EXPECT_EQ(delay.queue.numSamples, 15);
    const Signal32 output = delay.process(Signal32(1, 100, 1.0f));
    EXPECT_LT(maxDifference(getChannel(output, 0), std::vector<float>(100, 1.0f)), 2e-3);
}

TEST(FractionalDelay, UnmodulatedReadLeavesNothingUndefined)
{
    FractionalDelay delay;
    prepare(delay, 2, 0.001f, ModulationGenerator::None, 0.0f, 1.0f);
    for (const std::size_t length : {256u, 1u, 7u})
    {
        const Signal32 output = delay.process(Signal32(2, static_cast<int>(length), 1.0f));
        EXPECT_EQ(getPeak(getChannel(output, 1).subspan((length + 1) / 2)), 0.0);
    }
}
