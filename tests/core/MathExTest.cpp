#include "core/MathEx.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vesk::MathEx
{

TEST(MathEx, DecibelsAndDecayGains)
{
    struct Row
    {
        float decibels, gain;
    };
    for (const auto& [decibels, gain] :
         {Row{0.0f, 1.0f}, {20.0f, 10.0f}, {-60.0f, 0.001f}, {6.0206f, 2.0f}, {-150.0f, 3.1622776e-8f}})
    {
        EXPECT_NEAR(toDecibel(gain), decibels, 1e-5f);
        EXPECT_NEAR(fromDecibel(decibels), gain, 1e-6f * gain);
    }
    EXPECT_EQ(toDecibel(0.0f), -INFINITY);
    EXPECT_EQ(fromDecibel(-INFINITY), 0.0f);

    EXPECT_FLOAT_EQ(reverbTimeToGain(2.0f, 2.0f), 0.001f);
    EXPECT_FLOAT_EQ(reverbTimeToGain(2.0f, 1.0f), std::sqrt(0.001f));
    EXPECT_EQ(reverbTimeToGain(2.0f, 0.0f), 1.0f);
    EXPECT_EQ(reverbTimeToGain(0.01f, 1.0f), 0.0f) << "300 decays are beyond a float";
}

TEST(MathEx, GainsComeFromAQuotientInFloatAndAPowerInDouble)
{
    // The two orders of rounding differ in the last bit for about every second argument.
    for (float x = 0.013f; x < 40.0f; x *= 1.37f)
    {
        const float quotient = -x / 1.7f;
        EXPECT_EQ(reverbTimeToGain(1.7f, x),
                  static_cast<float>(std::pow(1000.0, static_cast<double>(quotient))));
        const float twentieth = x / 20.0f;
        EXPECT_EQ(fromDecibel(x), static_cast<float>(std::pow(10.0, static_cast<double>(twentieth))));
    }
}

TEST(MathEx, PowersOfTwo)
{
    struct Row
    {
        int n, larger, nearest, logarithm;
    };
    for (const auto& [n, larger, nearest, logarithm] : {Row{0, 1, 0, 0},
                                                        {1, 1, 1, 0},
                                                        {2, 2, 2, 1},
                                                        {3, 4, 2, 1},
                                                        {5, 8, 4, 2},
                                                        {6, 8, 4, 2},
                                                        {7, 8, 8, 2},
                                                        {96, 128, 64, 6},
                                                        {97, 128, 128, 6},
                                                        {127, 128, 128, 6},
                                                        {128, 128, 128, 7},
                                                        {129, 256, 128, 7},
                                                        {1000, 1024, 1024, 9},
                                                        {1 << 30, 1 << 30, 1 << 30, 30}})
    {
        EXPECT_EQ(findLargerPowerOfTwo(n), larger) << n;
        EXPECT_EQ(findNearestPowerOfTwo(n), nearest) << n;
        EXPECT_EQ(log2(n), logarithm) << n;
    }
    EXPECT_EQ(findLargerPowerOfTwo(-5), 1);
}

} // namespace vesk::MathEx
