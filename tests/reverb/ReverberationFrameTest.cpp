#include <gtest/gtest.h>

#include "tests/reverb/Engine.h"

namespace vesk::audio
{

using namespace test;
using R = Reverberation;

TEST(ReverberationFrame, restsAfterTwiceTheLongestTimeOfSilence)
{
    for (const auto& [reverbTime, lowTimeScale, preDelay, limit] : {std::tuple{0.1f, 100.0f, 0.0f, 0.2},
                                                                    {0.1f, 200, 0, 0.4},
                                                                    {0.1f, 50, 0, 0.2},
                                                                    {0.1f, 100, 50, 0.3},
                                                                    {2, 100, 0, 4.0}})
    {
        SCOPED_TRACE(limit);
        const auto engine = makeEngine(2, 48000.0,
                                       {{R::reverbTime, reverbTime},
                                        {R::lowTimeScale, lowTimeScale},
                                        {R::preDelay, preDelay},
                                        {R::dryGain, -20.0f}});
        // Largest sample below the threshold: silence, although its magnitude is large in the negative.
        Signal32 silence(2, 480, -0.5f);
        silence.getWriteChannelPtr(1)[7] = 2.4e-6f;
        Signal32 sound = silence;
        sound.getWriteChannelPtr(1)[7] = 2.6e-6f;
        // Resting or bypassed, the engine hands back the very samples it was given.
        const auto passes = [&](const Signal32& input, bool bypassed = false)
        { return input.getChannelPtr(0) == engine->process(input, bypassed).getChannelPtr(0); };

        for (const bool bypassed : {false, true})
        {
            EXPECT_FALSE(passes(sound));
            int blocks = 0;
            for (; !passes(silence) && blocks < 1000; ++blocks)
                EXPECT_TRUE(!bypassed || passes(silence, true)) << "the clock goes on";
            EXPECT_NEAR(blocks * (bypassed ? 2 : 1) * 0.01, limit, 0.0201);
        }
        // A longer time moves the limit at once; sound starts the clock anew.
        engine->setParameterValue(R::reverbTime, 32.0f, false);
        EXPECT_FALSE(passes(silence));
        engine->setParameterValue(R::reverbTime, reverbTime, false);
        EXPECT_TRUE(passes(silence));
        EXPECT_FALSE(passes(sound));
    }
}

TEST(ReverberationFrame, gainsRampOverOneBlock)
{
    const auto engine = makeEngine(2, 48000.0, dryOnly + Settings{{R::dryGain, -6.0f}});
    const auto setGain = [&](float gain) { engine->setParameterValue(R::dryGain, gain, false); };
    // A raised cosine from gain to gain, in dB.
    const auto expectRamp = [&](int length, double gain, double nextGain, bool bypassed = false)
    {
        const double from = std::pow(10.0, gain / 20.0), to = std::pow(10.0, nextGain / 20.0);
        const Signal32 block = engine->process(Signal32(2, length, 1.0f), bypassed);
        for (int c = 0; c < 2; ++c)
            for (int n = 0; n < length; ++n)
                ASSERT_NEAR(block.getChannelPtr(c)[n],
                            from + 0.5 * (to - from) * (1.0 - std::cos(std::numbers::pi * n / length)),
                            from == to ? 1e-6 : 1e-5)
                    << n;
    };
    expectRamp(256, -6.0, -6.0);
    setGain(6.0f);
    expectRamp(1, -6.0, -6.0); // no room for a ramp
    expectRamp(1, -6.0, -6.0);
    expectRamp(256, -6.0, 6.0);
    expectRamp(100, 6.0, 6.0);

    // A reset jumps to the gain; a bypassed block leaves the ramp for later.
    setGain(0.0f);
    engine->reset();
    expectRamp(64, 0.0, 0.0);
    setGain(-48.0f);
    expectRamp(64, 0.0, 0.0, true);
    expectRamp(64, 0.0, -48.0);
    expectRamp(64, -48.0, -48.0);
    engine->setParameterValue(R::muteDry, 1.0f, false);
    EXPECT_EQ(getPeak(getChannel(engine->process(Signal32(2, 64, 1.0f), false), 0)), 0.0);
}

/** dry + wet, each on its own gain; the pre-delay moves the wet signal by whole samples and never the dry one. */
TEST(ReverberationFrame, outputIsTheSumOfDryAndDelayedWet)
{
    const Signal32 input = makeNoiseSignal(2, 16000, 9);
    const auto run = [&](const Settings& settings)
    { return render(*makeEngine(2, 48000.0, settings), input); };
    const Signal32 wet = run(wetOnly);
    EXPECT_GT(getLevel(getChannel(wet, 0)), -40.0);

    const Settings delayed = {{R::preDelay, 20.9f}}; // 1003.2 samples
    const Signal32 sum = run(delayed + Settings{{R::dryGain, -6.0f}, {R::wetGain, -12.0f}});
    std::vector<float> expected = toVector(input, 1);
    for (std::size_t n = 0; n < expected.size(); ++n)
        expected[n] = expected[n] * std::pow(10.0f, -6.0f / 20.0f) +
                      (n >= 1003 ? wet.getChannelPtr(1)[n - 1003] * std::pow(10.0f, -12.0f / 20.0f) : 0.0f);
    EXPECT_LT(maxDifference(expected, getChannel(sum, 1)), 1e-6);

    // Early reflections and tail add up to the wet signal.
    const Signal32 early = run(wetOnly + Settings{{R::muteTail, 1.0f}});
    const Signal32 tail = run(wetOnly + Settings{{R::muteEarly, 1.0f}});
    EXPECT_GT(getLevel(getChannel(early, 0)), -40.0);
    EXPECT_GT(getLevel(getChannel(tail, 0)), -40.0);
    EXPECT_LT(maxDifference(getChannel(wet, 0), getChannel(early + tail, 0)), 1e-6);
    EXPECT_EQ(getPeak(getChannel(run(wetOnly + dryOnly), 0)), 0.0);
}

} // namespace vesk::audio
