#include "core/SignalGenerator.h"
#include "core/VectorOps.h"
#include "tests/core/TestSignals.h"

#include <gtest/gtest.h>

#include <limits>
#include <numbers>
#include <stdexcept>

namespace vesk::audio
{
namespace
{

using test::toVector;
using test::toVectors;
using Generator = SignalGenerator<float>;
constexpr double pi = std::numbers::pi;

TEST(SignalGenerator, RampIsARaisedCosineInAllChannels)
{
    for (const auto& [from, to] :
         {std::pair(0.0f, 1.0f), {1.0f, 0.0f}, {0.3f, 0.3f}, {-2.0f, 5.0f}, {0.001f, 0.0f}, {4.0f, -4.0f}})
        for (const int samples : {2, 3, 16, 100, 1000, 4096, 100000})
        {
            const auto ramp = Generator::generateSinusRamp(3, samples, from, to);
            std::vector<double> expected;
            for (int n = 0; n < samples; ++n)
                expected.push_back(double(from) +
                                   0.5 * (double(to) - double(from)) * (1.0 - std::cos(pi * n / samples)));
            EXPECT_LT(test::maxDifference(toVector(ramp, 0), expected),
                      2e-6 * std::max(1.0f, std::abs(to - from)))
                << from << " to " << to << ", " << samples;
            EXPECT_EQ(toVectors(ramp), std::vector(3, toVector(ramp, 0)));
        }
    for (const int samples : {2, 64, 1000})
    {
        const auto down = Generator::generateSinusRamp(1, samples, 1.0f, 0.0f);
        const auto sum = down + Generator::generateSinusRamp(1, samples, 0.0f, 1.0f);
        EXPECT_EQ(down.getChannelPtr(0)[0], 1.0f);
        EXPECT_LT(test::maxDifference(toVector(sum, 0), std::vector(std::size_t(samples), 1.0f)), 2e-7);
    }
}

TEST(SignalGenerator, RampsOfOneSampleDoNotExist)
{
    EXPECT_EQ(toVector(Generator::generateSinusRamp(2, 1, 0.5f, 0.5f), 1), std::vector<float>{0.5f});
    EXPECT_EQ(Generator::generateSinusRamp(2, 0, 0.0f, 1.0f).numSamples, 0);
    EXPECT_THROW(Generator::generateSinusRamp(1, 1, 0.0f, 1.0f), std::runtime_error);
}

TEST(SignalGenerator, TonesRunOnAcrossCalls)
{
    float phase = 1.0f;
    double sample = 0.0;
    for (const int length : {1, 7, 480, 13, 2000})
    {
        const auto tone = Generator::generateTone(2, length, 48000.0f, 0.5f, 1234.5f, phase);
        std::vector<double> expected;
        for (int n = 0; n < length; ++n)
            expected.push_back(0.5 * std::cos(2.0 * pi * double(1234.5f / 48000.0f) * sample++ + 1.0));
        EXPECT_LT(test::maxDifference(toVector(tone, 0), expected), 2e-6);
        EXPECT_EQ(toVector(tone, 1), toVector(tone, 0));
    }
    const float before = phase;
    EXPECT_EQ(Generator::generateTone(0, 100, 48000.0f, 1.0f, 1000.0f, phase).numChannels, 0);
    EXPECT_EQ(phase, before);
}

TEST(VectorOps, AToneWithoutMagnitudeIsSilenceAndKeepsThePhase)
{
    float phase = 0.7f;
    for (const float magnitude : {0.0f, -1.0f, std::numeric_limits<float>::quiet_NaN()})
    {
        std::vector<float> tone(9, 5.0f);
        vo::generateSinusoidal(magnitude, 0.1f, phase, tone.data(), 9);
        EXPECT_EQ(tone, std::vector<float>(9, 0.0f));
    }
    EXPECT_NO_THROW(vo::generateSinusoidal(1.0f, 0.1f, phase, nullptr, 0));
    EXPECT_EQ(phase, 0.7f);
    EXPECT_NO_THROW(vo::copy<float>(nullptr, nullptr, 0));
    EXPECT_THROW(vo::copy<float>(nullptr, nullptr, 1), std::runtime_error);
}

} // namespace
} // namespace vesk::audio
