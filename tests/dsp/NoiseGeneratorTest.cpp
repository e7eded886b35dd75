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
        double peak; ///< bound, in standard deviations
    };
    constexpr int length = 200000;
    for (const auto& row : {Row{vo::Gaussian, 1.0f, 3.0, 7.0}, Row{vo::Gaussian, 0.02f, 3.0, 7.0},
                            Row{vo::Uniform, 1.0f, 1.8, 1.7320509}, Row{vo::Uniform, 5.0f, 1.8, 1.7320509}})
    {
        SCOPED_TRACE(testing::Message() << row.distribution << ", scale " << row.scale);
        NoiseGenerator generator(1, row.distribution, row.scale, 0.0f, 42u);
        const auto noise = toVector((1.0f / row.scale) * generator.generate(length), 0);
        const std::span<const float> values = noise;
        std::vector<float> squares(noise);
        for (auto& value : squares)
            value *= value;

        EXPECT_NEAR(meanProduct(values, std::vector<float>(length, 1.0f)), 0.0, 0.01);
        EXPECT_NEAR(meanSquare(values), 1.0, 0.01);
        EXPECT_NEAR(meanSquare(squares), row.kurtosis, 0.05);
        EXPECT_NEAR(meanProduct(values.first(length - 1), values.last(length - 1)), 0.0, 0.01) << "not white";
        for (const float value : values)
            ASSERT_LE(std::abs(static_cast<double>(value)), row.peak);
    }
    EXPECT_THROW(NoiseGenerator(1, static_cast<vo::RandomDistribution>(2), 1.0f, 0.0f, 1u),
                 std::invalid_argument);
}

TEST(NoiseGenerator, ChannelsDifferOnlyInGain)
{
    struct Row
    {
        float correlation;
        double gain;
    };
    for (const auto& row : {Row{0.0f, 1.0}, Row{0.5f, std::sqrt(2.0)},
                            Row{0.1f, std::sqrt(0.9) + std::sqrt(0.1)}, Row{1.0f, 1.0}})
    {
        SCOPED_TRACE(row.correlation);
        NoiseGenerator generator(3, vo::Gaussian, 1.0f, row.correlation, 7u);
        const Signal32 noise = generator.generate(500);
        ASSERT_EQ(noise.numChannels, 3);
        for (int n = 0; n < 500; ++n)
        {
            const double first = static_cast<double>(noise.getChannelPtr(0)[n]);
            EXPECT_NEAR(noise.getChannelPtr(1)[n], row.gain * first, 1e-6 * (1.0 + std::abs(first)));
            EXPECT_EQ(noise.getChannelPtr(2)[n], noise.getChannelPtr(1)[n]);
        }
        EXPECT_EQ(generator.hasEqualChannels(), row.gain == 1.0);
    }
}

TEST(NoiseGenerator, SequenceDependsOnTheSeedAloneNotOnTheCuts)
{
    constexpr int length = 4000;
    NoiseGenerator generator(2, vo::Gaussian, 1.0f, 0.0f, 7u);
    const Signal32 whole = generator.generate(length);
    NoiseGenerator other(2, vo::Gaussian, 1.0f, 0.0f, 8u);
    EXPECT_NEAR(meanProduct(getChannel(whole, 0), getChannel(other.generate(length), 0)), 0.0, 0.06);

    other.initialize(2, vo::Gaussian, 1.0f, 0.0f, 7u);
    EXPECT_EQ(other.generate(0).numSamples, 0);
    const Signal32 cut =
        processInCuts(whole, [&](const Signal32& block) { return other.generate(block.numSamples); });
    EXPECT_EQ(toVector(cut, 0), toVector(whole, 0));
    EXPECT_EQ(toVector(cut, 1), toVector(whole, 0));

    other.initialize(0, vo::Gaussian, 1.0f, 0.0f, 7u);
    EXPECT_EQ(other.generate(100).numChannels, 0);
}
