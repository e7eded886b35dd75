#include "core/AudioFormat.h"
#include "core/kernels.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <thread>

namespace vesk::audio
{
namespace
{

TEST(AudioFormat, StandardLayouts)
{
    const std::map<std::string, SpeakerPosition> speakers = {
        {"L", {-1, 1, 0, Regular, -1}},  {"R", {1, 1, 0, Regular, -1}},    {"C", {0, 1, 0, Regular, -1}},
        {"LFE", {0, 0, 0, Lfe, -1}},     {"Ls", {-1, -1, 0, Regular, -1}}, {"Rs", {1, -1, 0, Regular, -1}},
        {"Sl", {-1, 0, 0, Regular, -1}}, {"Sr", {1, 0, 0, Regular, -1}},   {"?", {0, 0, 0, Unknown, -1}}};

    for (const std::string layout : {"", "C", "L R", "L R LFE", "L R Ls Rs", "L R C Ls Rs", "L R C LFE Ls Rs",
                                     "L R C Ls Rs Sl Sr", "L R C LFE Ls Rs Sl Sr", "? ? ? ? ? ? ? ? ?"})
    {
        std::vector<SpeakerPosition> expected;
        std::istringstream names(layout);
        for (std::string name; names >> name;)
            expected.push_back(speakers.at(name));

        const AudioFormat format(static_cast<int>(expected.size()), 44100.0);
        EXPECT_EQ(format.speakers, expected) << layout;
        EXPECT_EQ(format.numChannels, static_cast<int>(expected.size()));
        EXPECT_EQ(format.sampleRate, 44100.0);
    }
}

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
    EXPECT_STRNE(ippGetInstructionSetName(), "");
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
    EXPECT_EQ(ippSetNumThreads(1), ippStsNoErr);
}

} // namespace
} // namespace vesk::audio
