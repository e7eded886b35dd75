#include <gtest/gtest.h>

#include "tests/reverb/Engine.h"

namespace vesk::audio
{

using namespace test;
using R = Reverberation;

namespace
{
constexpr int length = 12000;

const Settings tailOnly = wetOnly + Settings{{R::muteEarly, 1.0f}, {R::modulationDepth, 0.0f}};
const Settings earlyOnly = wetOnly + Settings{{R::muteTail, 1.0f}};

/** Which outputs sound: bit o for output o, with an impulse into one input. */
unsigned getSoundingOutputs(const AudioFormat& input, const AudioFormat& output, const Settings& settings,
                            int channel)
{
    const auto engine = makeEngine(input, output, settings);
    const Signal32 result = render(*engine, makeImpulse(input.numChannels, length, {channel}));
    unsigned sounding = 0;
    for (int o = 0; o < result.numChannels; ++o)
        if (getPeak(getChannel(result, o)) > 1e-5)
            sounding |= 1u << o;
    return sounding;
}
} // namespace

TEST(ReverberationChannels, soundGoesWhereItsSpeakersAre)
{
    const auto layout = [](int channels) { return AudioFormat(channels, 48000.0); };
    AudioFormat swapped = layout(2);
    std::swap(swapped.speakers[0], swapped.speakers[1]);
    AudioFormat unknown = layout(2);
    unknown.speakers[1] = {};
    AudioFormat monoBus = layout(1);
    monoBus.speakers[0].type = Mono; // feeds both fronts

    struct Case
    {
        const char* name;
        AudioFormat input, output;
        int channel;
        unsigned dry, early, tail; // outputs that sound, bit by bit
    };
    // 5.1 is L R C LFE Ls Rs: bits 0 1 2 3 4 5.
    const Case cases[] = {
        {"mono", layout(1), layout(1), 0, 0b1, 0b1, 0b1},
        {"stereo, left", layout(2), layout(2), 0, 0b01, 0b11, 0b11},
        {"mono bus to stereo", monoBus, layout(2), 0, 0b11, 0b11, 0b11},
        {"centre to stereo has no equal speaker", layout(1), layout(2), 0, 0b00, 0b11, 0b11},
        {"stereo to mono, right: the tail leans left", layout(2), layout(1), 1, 0b0, 0b1, 0b0},
        {"stereo to swapped stereo", layout(2), swapped, 0, 0b10, 0b11, 0b11},
        {"unknown speaker", unknown, layout(2), 1, 0b00, 0b00, 0b00},
        {"5.1, left", layout(6), layout(6), 0, 0b000001, 0b110111, 0b110111},
        {"5.1, centre", layout(6), layout(6), 2, 0b000100, 0b110111, 0b110111},
        {"5.1, low frequency", layout(6), layout(6), 3, 0b001000, 0b000000, 0b000000},
        {"5.1, right surround", layout(6), layout(6), 5, 0b100000, 0b110111, 0b110111},
        {"7.1 to stereo, rear: no tail", layout(8), layout(2), 4, 0b00, 0b11, 0b00},
        {"stereo to 7.1", layout(2), layout(8), 0, 0b1, 0b11110111, 0b11110111},
    };
    for (const auto& [name, input, output, channel, dry, early, tail] : cases)
    {
        SCOPED_TRACE(name);
        EXPECT_EQ(getSoundingOutputs(input, output, dryOnly, channel), dry);
        EXPECT_EQ(getSoundingOutputs(input, output, earlyOnly, channel), early);
        EXPECT_EQ(getSoundingOutputs(input, output, tailOnly, channel), tail);
        // Bypassed, the channels are converted as the dry signal's are, at unity.
        const auto engine = makeEngine(input, output, {{R::dryGain, -30.0f}});
        const Signal32 passed = engine->process(makeImpulse(input.numChannels, 64, {channel}), true);
        for (int o = 0; o < output.numChannels; ++o)
            EXPECT_EQ(passed.getChannelPtr(o)[0], (dry >> o & 1u) != 0 ? 1.0f : 0.0f);
    }
}

TEST(ReverberationChannels, spreadNarrowsTheWetSignal)
{
    // L R LFE: the sum is normalised by all three channels, the low-frequency channel stays out.
    const AudioFormat format(3, 48000.0);
    const auto run = [&](float spread)
    {
        return render(*makeEngine(format, format, wetOnly + Settings{{R::stereoSpread, spread}}),
                      makeImpulse(3, length, {0}));
    };
    const Signal32 wide = run(100.0f);
    EXPECT_GT(maxDifference(getChannel(wide, 0), getChannel(wide, 1)), 1e-3);
    for (const float spread : {0.0f, 30.0f, 99.9f})
    {
        const Signal32 narrow = run(spread);
        for (int c = 0; c < 2; ++c)
            for (int n = 0; n < length; ++n)
            {
                const float mono =
                    std::sqrt(1.0f / 3.0f) * (wide.getChannelPtr(0)[n] + wide.getChannelPtr(1)[n]);
                const float expected =
                    (1.0f - spread / 100.0f) * mono + spread / 100.0f * wide.getChannelPtr(c)[n];
                ASSERT_NEAR(narrow.getChannelPtr(c)[n], expected, 1e-6f) << spread;
            }
    }
}

} // namespace vesk::audio
