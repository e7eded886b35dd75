#include "core/kernels.h"

#include <gtest/gtest.h>

#include <limits>
#include <thread>

namespace vesk::audio
{
namespace
{

/** A product that is denormal, and one of a denormal operand that is not; volatile keeps them at run time. */
float multiplyAtRunTime(float a, float b)
{
    volatile float left = a, right = b;
    return left * right;
}

constexpr float smallest = std::numeric_limits<float>::min();
constexpr float denormal = std::numeric_limits<float>::denorm_min() * 1024;

TEST(DspCore, StartUpHasRunInThisProgram)
{
    EXPECT_EQ(multiplyAtRunTime(smallest, 0.5f), 0.0f);
    EXPECT_EQ(multiplyAtRunTime(denormal, 0x1p+100f), 0.0f);
}

TEST(DspCore, DenormalsAreSwitchedForTheCallingThread)
{
    std::thread(
        []
        {
            unsigned state = 0;
            EXPECT_EQ(ippSetFlushToZero(0, &state), ippStsNoErr);
            EXPECT_EQ(ippSetDenormAreZeros(0), ippStsNoErr);
            EXPECT_GT(multiplyAtRunTime(smallest, 0.5f), 0.0f);
            EXPECT_GT(multiplyAtRunTime(denormal, 0x1p+100f), 0.0f);
            EXPECT_EQ(ippSetFlushToZero(1, nullptr), ippStsNoErr);
            EXPECT_EQ(multiplyAtRunTime(smallest, 0.5f), 0.0f);
            EXPECT_EQ(ippSetDenormAreZeros(1), ippStsNoErr);
            EXPECT_EQ(multiplyAtRunTime(denormal, 0x1p+100f), 0.0f);
        })
        .join();
    EXPECT_EQ(multiplyAtRunTime(smallest, 0.5f), 0.0f) << "another thread's switch";
}

} // namespace
} // namespace vesk::audio
