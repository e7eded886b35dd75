#include "dsp/ModulationGenerator.h"

#include "tests/dsp/Measures.h"

#include <gtest/gtest.h>

using namespace vesk::audio;
using namespace vesk::audio::test;

namespace
{
constexpr double sampleRate = 48000.0;
constexpr float depth = 0.003f;

void prepare(ModulationGenerator& generator, ModulationGenerator::ModulationType type, float rate,
             float phase = 0.0f, float correlation = 0.0f)
{
    generator.setFormat(2, sampleRate);
    generator.setModulation(type, 0.0f, rate, depth, phase, correlation);
}
} // namespace

TEST(ModulationGenerator, RandomKindStaysInItsBandAndWithinItsDepth)
{
    constexpr int length = 1 << 19;
    for (const float rate : {20.0f, 200.0f})
    {
        SCOPED_TRACE(rate);
        ModulationGenerator generator;
        prepare(generator, ModulationGenerator::Random, rate);
        const Signal32 modulation = generator.generate(length);
        ASSERT_EQ(toVector(modulation, 0), toVector(modulation, 1));
        const auto values = getChannel(modulation, 0);
        for (const float value : values)
            ASSERT_LE(std::abs(value), depth);

        // The noise bandwidth of the second-order low-pass is pi / (2 sqrt 2) times its cut-off.
        const double deviation = std::sqrt(meanSquare(values)) / static_cast<double>(depth);
        EXPECT_NEAR(deviation, 0.2 * std::sqrt(1.1107), 0.02);

        // Step by step a signal of this band moves by the RMS slope of its spectrum at most: it is smooth.
        double largestStep = 0.0;
        for (std::size_t n = 1; n < values.size(); ++n)
            largestStep = std::max(largestStep, static_cast<double>(std::abs(values[n] - values[n - 1])));
        EXPECT_LT(largestStep, static_cast<double>(depth * rate) * 10.0 / sampleRate);
    }
}

TEST(ModulationGenerator, RandomKindIsOneStreamInAnyCutsAndRunsOnThroughAChange)
{
    constexpr int length = 20000;
    ModulationGenerator whole;
    prepare(whole, ModulationGenerator::Random, 50.0f, 0.25f);
    const Signal32 expected = whole.generate(length);
    ModulationGenerator inCuts;
    prepare(inCuts, ModulationGenerator::Random, 50.0f, 0.25f);
    const auto next = [&](const Signal32& block) { return inCuts.generate(block.numSamples); };
    EXPECT_LT(maxDifference(getChannel(processInCuts(expected, next), 0), getChannel(expected, 0)),
              1e-6 * static_cast<double>(depth));

    const float before = expected.getChannelPtr(0)[length - 1];
    prepare(whole, ModulationGenerator::Random, 50.0f, 0.75f);
    const Signal32 after = whole.generate(length);
    EXPECT_NEAR(after.getChannelPtr(0)[0], before, 0.02f * depth);
    EXPECT_GT(std::abs(before), 0.05f * depth) << "the comparison above needs a start away from 0";

    // Other seeds, other noise; a phase of 1 is the seed 0 again.
    const auto getStart = [](float phase)
    {
        ModulationGenerator fresh;
        prepare(fresh, ModulationGenerator::Random, 50.0f, phase);
        return toVector(fresh.generate(1000), 0);
    };
    EXPECT_GT(maxDifference(getStart(0.25f), getStart(0.75f)), 0.05 * static_cast<double>(depth));
    EXPECT_EQ(getStart(1.0f), getStart(0.0f));
}

TEST(ModulationGenerator, CorrelatedChannelsDifferInGainUpToTheClamp)
{
    constexpr int length = 50000;
    ModulationGenerator generator;
    prepare(generator, ModulationGenerator::Random, 20000.0f, 0.0f, 0.5f);
    const Signal32 modulation = generator.generate(length);
    int numClamped = 0;
    for (int n = 0; n < length; ++n)
    {
        const float unlimited = modulation.getChannelPtr(0)[n] * std::sqrt(2.0f);
        ASSERT_NEAR(modulation.getChannelPtr(1)[n], std::clamp(unlimited, -depth, depth), 1e-5f * depth);
        numClamped += std::abs(unlimited) > depth ? 1 : 0;
    }
    EXPECT_GT(numClamped, 0);
}

TEST(ModulationGenerator, OtherKindsFollowTheirFormulas)
{
    struct Row
    {
        int type;
        float swing;
        float offset;
        float endPhase; ///< after the samples below, radians
    };
    constexpr int length = 250;
    constexpr float rate = 48.0f; // a quarter of a cycle
    constexpr float startPhase = 0.5f;
    const float turned = startPhase + std::numbers::pi_v<float> / 2.0f;
    for (const auto& row :
         {Row{ModulationGenerator::None, 2.0f, 0.0f, startPhase}, Row{7, 2.0f, -3.0f, startPhase},
          Row{ModulationGenerator::Sinusoidal, 0.0f, 0.5f, startPhase},
          Row{ModulationGenerator::Sinusoidal, 2.0f, 0.5f, turned}})
    {
        SCOPED_TRACE(testing::Message() << "type " << row.type << ", swing " << row.swing);
        ModulationGenerator generator;
        generator.setFormat(2, sampleRate);
        generator.setModulation(static_cast<ModulationGenerator::ModulationType>(row.type), row.offset, rate,
                                row.swing, startPhase, 0.0f);
        const Signal32 modulation = processInCuts(Signal32(2, length, 0.0f), [&](const Signal32& block)
                                                  { return generator.generate(block.numSamples); });
        const double amplitude =
            row.type == ModulationGenerator::Sinusoidal ? static_cast<double>(row.swing) : 0.0;
        for (int c = 0; c < 2; ++c)
            for (int n = 0; n < length; ++n)
            {
                const double angle = 2.0 * std::numbers::pi * n / 1000.0 + static_cast<double>(startPhase);
                ASSERT_NEAR(modulation.getChannelPtr(c)[n],
                            static_cast<double>(row.offset) + amplitude * std::cos(angle), 1e-5);
            }
        EXPECT_NEAR(generator.phase, row.endPhase, 1e-5f);
    }
}
