#include "dsp/ModulationGenerator.h"

#include "tests/dsp/Measures.h"

#include <gtest/gtest.h>

using namespace vesk::audio;
using namespace vesk::audio::test;

namespace
{
constexpr double sampleRate = 48000.0;
constexpr float depth = 4.0f;

void prepare(ModulationGenerator& generator, float rate, float phase = 0.0f, float correlation = 0.0f)
{
    generator.setFormat(2, sampleRate);
    generator.setModulation(ModulationGenerator::Random, 0.0f, rate, depth, phase, correlation);
}
} // namespace

TEST(ModulationGenerator, RandomKindIsSmoothAndHasItsDeviation)
{
    constexpr int length = 1 << 19;
    for (const float rate : {20.0f, 200.0f})
    {
        SCOPED_TRACE(rate);
        ModulationGenerator generator;
        prepare(generator, rate);
        const Signal32 modulation = generator.generate(length);
        const auto values = getChannel(modulation, 0);
        EXPECT_EQ(maxDifference(values, getChannel(modulation, 1)), 0.0);
        EXPECT_LE(getPeak(values), 4.0);

        // The noise bandwidth of the second-order low-pass is pi / (2 sqrt 2) times its cut-off.
        EXPECT_NEAR(std::sqrt(getEnergy(values) / length), 0.8 * std::sqrt(1.1107), 0.08);
        EXPECT_LT(maxDifference(values.first(length - 1), values.last(length - 1)), 40.0 * rate / sampleRate);
    }
}

TEST(ModulationGenerator, RandomKindIsOneStreamInAnyCutsAndRunsOnThroughAChange)
{
    constexpr int length = 20000;
    ModulationGenerator whole;
    prepare(whole, 50.0f, 0.25f);
    const Signal32 expected = whole.generate(length);
    ModulationGenerator inCuts;
    prepare(inCuts, 50.0f, 0.25f);
    const auto next = [&](const Signal32& block) { return inCuts.generate(block.numSamples); };
    EXPECT_LT(maxDifference(getChannel(processInCuts(expected, next), 0), getChannel(expected, 0)), 1e-6);

    const float before = expected.getChannelPtr(0)[length - 1];
    ASSERT_GT(std::abs(before), 0.2f) << "a start away from 0 is needed here";
    prepare(whole, 50.0f, 0.75f);
    EXPECT_NEAR(whole.generate(1).getChannelPtr(0)[0], before, 0.08f);

    // Other seeds, other noise; a phase of 1 is the seed 0 again.
    const auto getStart = [](float phase)
    {
        ModulationGenerator fresh;
        prepare(fresh, 50.0f, phase);
        return toVector(fresh.generate(1000), 0);
    };
    EXPECT_GT(maxDifference(getStart(0.25f), getStart(0.75f)), 0.05);
    EXPECT_EQ(getStart(1.0f), getStart(0.0f));
}

TEST(ModulationGenerator, CorrelatedChannelsDifferInGainUpToTheClamp)
{
    ModulationGenerator generator;
    prepare(generator, 20000.0f, 0.0f, 0.5f);
    const Signal32 modulation = generator.generate(50000);
    auto expected = toVector(std::sqrt(2.0f) * modulation, 0);
    EXPECT_GT(getPeak(expected), 4.0) << "nothing is clamped here";
    for (float& value : expected)
        value = std::clamp(value, -depth, depth);
    EXPECT_LT(maxDifference(getChannel(modulation, 1), expected), 1e-5);
}

TEST(ModulationGenerator, OtherKindsFollowTheirFormulas)
{
    struct Row
    {
        int type;
        float depth;
        float offset;
        double amplitude;
    };
    constexpr int length = 250; // a quarter of a cycle of 48 Hz
    for (const auto& row : {Row{0, 2.0f, 0.0f, 0.0}, Row{7, 2.0f, -3.0f, 0.0}, Row{1, 0.0f, 0.5f, 0.0},
                            Row{1, 2.0f, 0.5f, 2.0}})
    {
        SCOPED_TRACE(testing::Message() << "type " << row.type << ", depth " << row.depth);
        ModulationGenerator generator;
        generator.setFormat(2, sampleRate);
        generator.setModulation(static_cast<ModulationGenerator::ModulationType>(row.type), row.offset, 48.0f,
                                row.depth, 0.5f, 0.0f);
        const auto next = [&](const Signal32& block) { return generator.generate(block.numSamples); };
        const Signal32 modulation = processInCuts(Signal32(2, length, 0.0f), next);
        for (int n = 0; n < length; ++n)
        {
            const double tone = row.amplitude * std::cos(2.0 * std::numbers::pi * n / 1000.0 + 0.5);
            ASSERT_NEAR(modulation.getChannelPtr(1)[n], static_cast<double>(row.offset) + tone, 1e-5);
        }
        EXPECT_NEAR(generator.phase, row.amplitude > 0.0 ? 0.5 + std::numbers::pi / 2.0 : 0.5, 1e-5);
    }
}
