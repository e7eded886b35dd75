#include "dsp/NoiseGenerator.h"

#include "tests/dsp/Measures.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace vesk;
using namespace vesk::audio;
using namespace vesk::audio::test;

TEST(NoiseGenerator, HasTheDistributionAskedFor)
{
    struct Row
    {
        vo::RandomDistribution distribution;
        float scale;
        double kurtosis;
    };
    constexpr int length = 200000;
    for (const auto& row : {Row{vo::Gaussian, 0.02f, 3.0}, Row{vo::Uniform, 5.0f, 1.8}})
    {
        SCOPED_TRACE(row.distribution);
        NoiseGenerator generator(1, row.distribution, row.scale, 0.0f, 42u);
        const Signal32 noise = (1.0f / row.scale) * generator.generate(length);
        const Signal32 squares = noise * noise;
        EXPECT_NEAR(std::abs(spectrumAt(getChannel(noise, 0), 0.0)) / length, 0.0, 0.01);
        EXPECT_NEAR(getEnergy(getChannel(noise, 0)) / length, 1.0, 0.01);
        EXPECT_NEAR(getEnergy(getChannel(squares, 0)) / length, row.kurtosis, 0.05);
    }
    EXPECT_THROW(NoiseGenerator(1, static_cast<vo::RandomDistribution>(2), 1.0f, 0.0f, 1u),
                 std::invalid_argument);
}

TEST(NoiseGenerator, ChannelsDifferOnlyInGain)
{
    for (const auto& [correlation, gain] :
         {std::pair{0.0f, 1.0f}, {0.5f, 1.41421356f}, {0.1f, 1.26491106f}, {1.0f, 1.0f}})
    {
        SCOPED_TRACE(correlation);
        NoiseGenerator generator(3, vo::Gaussian, 1.0f, correlation, 7u);
        const Signal32 noise = generator.generate(500);
        const Signal32 scaled = gain * noise;
        EXPECT_LT(maxDifference(getChannel(noise, 1), getChannel(scaled, 0)), 2e-6);
        EXPECT_EQ(toVector(noise, 2), toVector(noise, 1));
        EXPECT_EQ(generator.generate(0).numSamples, 0);
    }
}
