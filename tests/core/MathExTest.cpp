#include "core/MathEx.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>

namespace vesk::MathEx
{

TEST(MathEx, GainsComeFromAQuotientInFloatAndAPowerInDouble)
{
    // The two orders of rounding differ in the last bit for about every second argument.
    for (float x = 0.013f; x < 40.0f; x *= 1.37f)
    {
        const float quotient = -x / 1.7f;
        EXPECT_EQ(reverbTimeToGain(1.7f, x),
                  static_cast<float>(std::pow(1000.0, static_cast<double>(quotient))));
        for (const float decibels : {x, -x, -4.0f * x})
        {
            const float twentieth = decibels / 20.0f;
            const float gain = fromDecibel(decibels);
            EXPECT_EQ(gain, static_cast<float>(std::pow(10.0, static_cast<double>(twentieth))));
            EXPECT_NEAR(toDecibel(gain), decibels, 1e-5f);
        }
    }
    EXPECT_EQ(toDecibel(0.0f), -INFINITY);
    EXPECT_EQ(fromDecibel(-INFINITY), 0.0f);
    EXPECT_EQ(reverbTimeToGain(2.0f, 0.0f), 1.0f);
    EXPECT_EQ(reverbTimeToGain(0.01f, 1.0f), 0.0f) << "300 decays are beyond a float";
}

TEST(MathEx, PowersOfTwo)
{
    for (int n = 1; n < 5000; ++n)
    {
        const int larger = static_cast<int>(std::bit_ceil(static_cast<unsigned>(n)));
        EXPECT_EQ(findLargerPowerOfTwo(n), larger) << n;
        EXPECT_EQ(log2(n), std::bit_width(static_cast<unsigned>(n)) - 1) << n;
        EXPECT_EQ(findNearestPowerOfTwo(n), 4 * n > 3 * larger ? larger : larger / 2)
            << n << ": half way is the smaller one";
    }
    for (const int n : {-5, 0})
        EXPECT_EQ(findLargerPowerOfTwo(n), 1);
    EXPECT_EQ(findNearestPowerOfTwo(0), 0);
    EXPECT_EQ(log2(0), 0);
    for (const auto function : {findLargerPowerOfTwo, findNearestPowerOfTwo})
        EXPECT_EQ(function(1 << 30), 1 << 30);
    EXPECT_EQ(log2(1 << 30), 30);
}

} // namespace vesk::MathEx
