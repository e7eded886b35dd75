#include "core/AudioFormat.h"
#include "core/BaseAudioProcessor.h"
#include "core/kernels.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <sstream>
#include <stdexcept>
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

TEST(AudioFormat, ComparesEveryField)
{
    const AudioFormat stereo(2, 48000.0);
    EXPECT_EQ(stereo, AudioFormat(2, 48000.0));
    EXPECT_NE(stereo, AudioFormat(2, 44100.0));
    EXPECT_NE(stereo, AudioFormat(1, 48000.0));

    const auto differs = [&](auto change)
    {
        AudioFormat other = stereo;
        change(other.speakers[1]);
        return !(other == stereo);
    };
    EXPECT_TRUE(differs([](auto& speaker) { speaker.x = 0.5f; }));
    EXPECT_TRUE(differs([](auto& speaker) { speaker.y = 0.5f; }));
    EXPECT_TRUE(differs([](auto& speaker) { speaker.z = 0.5f; }));
    EXPECT_TRUE(differs([](auto& speaker) { speaker.type = Mono; }));
    EXPECT_TRUE(differs([](auto& speaker) { speaker.aux = 0.0f; }));
}

/** The least that an engine must have. */
struct Wire : BaseAudioProcessor
{
    Signal32 process(const Signal32& input, bool) override { return input; }
};

TEST(BaseAudioProcessor, AnEngineWithoutParametersOrLatency)
{
    Wire engine;
    EXPECT_EQ(engine.expectedBlockSize, -1);
    EXPECT_TRUE(engine.setFormat(AudioFormat(1, 48000.0), AudioFormat(2, 48000.0)));
    EXPECT_TRUE(engine.setFormat(engine.inputFormat, engine.outputFormat)) << "its own formats";
    EXPECT_EQ(engine.inputFormat, AudioFormat(1, 48000.0));
    EXPECT_EQ(engine.outputFormat, AudioFormat(2, 48000.0));

    const auto info = engine.getProcessingInfo();
    EXPECT_EQ(info.leadLatency, 0);
    EXPECT_EQ(info.trailLatency, 0);
    EXPECT_EQ(info.rate, 1.0);

    const auto messageOf = [](auto call) -> std::string
    {
        try
        {
            call();
        }
        catch (const std::out_of_range& error)
        {
            return error.what();
        }
        return "nothing thrown";
    };
    float low = 0.0f, high = 0.0f;
    EXPECT_EQ(messageOf([&] { engine.getParameterRange(0, low, high); }), "Parameter index");
    EXPECT_EQ(messageOf([&] { engine.getParameterValue(0); }), "Parameter index");
    EXPECT_EQ(messageOf([&] { engine.setParameterValue(0, 1.0f, true); }), "Parameter index");
    engine.effectuateParameterChanges();
    engine.reset();
}

//==============================================================================

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
