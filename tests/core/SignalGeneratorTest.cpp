// The ramp's shape is tested where it is heard: by the delay's crossfade and the engine's gains.

#include "core/SignalGenerator.h"
#include "core/VectorOps.h"
#include "tests/core/TestSignals.h"

#include <gtest/gtest.h>

#include <limits>
#include <numbers>
#include <stdexcept>

namespace vesk::audio
{

using Generator = SignalGenerator<float>;

TEST(SignalGenerator, RampsOfOneSampleDoNotExist)
{
    EXPECT_EQ(test::toVector(Generator::generateSinusRamp(2, 1, 0.5f, 0.5f), 1), std::vector<float>{0.5f});
    EXPECT_EQ(Generator::generateSinusRamp(2, 0, 0.0f, 1.0f).numSamples, 0);
    EXPECT_THROW(Generator::generateSinusRamp(1, 1, 0.0f, 1.0f), std::runtime_error);
}

TEST(SignalGenerator, TonesRunOnAcrossCallsInAllChannels)
{
    float phase = 1.0f;
    double sample = 0.0;
    for (const int length : {1, 7, 480, 2000})
    {
        const auto tone = Generator::generateTone(2, length, 48000.0f, 0.5f, 1234.5f, phase);
        for (int n = 0; n < length; ++n)
            ASSERT_NEAR(tone.getChannelPtr(0)[n],
                        0.5 * std::cos(2.0 * std::numbers::pi * double(1234.5f / 48000.0f) * sample++ + 1.0),
                        2e-6);
        EXPECT_EQ(test::toVector(tone, 1), test::toVector(tone, 0));
    }
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

} // namespace vesk::audio
