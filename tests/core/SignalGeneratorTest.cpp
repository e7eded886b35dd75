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
}

TEST(SignalGenerator, RampsOfOneSampleDoNotExist)
{
    EXPECT_EQ(toVector(Generator::generateSinusRamp(2, 1, 0.5f, 0.5f), 1), std::vector<float>{0.5f});
    EXPECT_EQ(Generator::generateSinusRamp(2, 0, 0.0f, 1.0f).numSamples, 0);
    EXPECT_THROW(Generator::generateSinusRamp(1, 1, 0.0f, 1.0f), std::runtime_error);
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
    EXPECT_EQ(phase, 0.7f);
    EXPECT_NO_THROW(vo::copy<float>(nullptr, nullptr, 0));
    EXPECT_THROW(vo::copy<float>(nullptr, nullptr, 1), std::runtime_error);
}

} // namespace
} // namespace vesk::audio
