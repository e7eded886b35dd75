#include "tests/plugin/TestPlugIn.h"

#include <gtest/gtest.h>

namespace
{
constexpr double rate = 48000.0;

/** The left channel holds ones, the right one twos. */
juce::AudioBuffer<float> makeBlock(int samples)
{
    juce::AudioBuffer<float> buffer(2, samples);
    for (const int channel : {0, 1})
        std::fill_n(buffer.getWritePointer(channel), samples, static_cast<float>(channel + 1));
    return buffer;
}

class AudioPathTest : public ::testing::Test
{
protected:
    juce::AudioBuffer<float> run(juce::AudioBuffer<float> buffer)
    {
        juce::MidiBuffer midi;
        plugIn.processBlock(buffer, midi);
        return buffer;
    }

    TestPlugIn plugIn;
    FakeEngine& engine = plugIn.engine;
};
} // namespace

TEST_F(AudioPathTest, PassesEachChannelThroughTheEngine)
{
    plugIn.prepareToPlay(rate, 64);
    const auto out = run(makeBlock(64));
    EXPECT_EQ(out.getSample(0, 63), 0.5f);
    EXPECT_EQ(out.getSample(1, 0), 1.0f);
    EXPECT_FALSE(engine.lastBypassed);
    EXPECT_EQ(engine.inputFormat, vesk::audio::AudioFormat(2, rate));
    EXPECT_EQ(engine.outputFormat, vesk::audio::AudioFormat(2, rate));
    EXPECT_EQ(engine.resets, 1) << "nothing of an earlier run sounds on";

    run(makeBlock(0));
    EXPECT_EQ(engine.blocks, 1) << "empty blocks do not reach the engine";

    auto buffer = makeBlock(8);
    juce::MidiBuffer midi;
    plugIn.processBlockBypassed(buffer, midi);
    EXPECT_TRUE(engine.lastBypassed);
}

TEST_F(AudioPathTest, FlushesDenormalsDuringTheBlockOnly)
{
    using Modes = juce::FloatVectorOperations;
    const juce::ScopedNoDenormals restoring;
    Modes::disableDenormalisedNumberSupport(false);
    plugIn.prepareToPlay(rate, 16);

    bool isFlushing = false;
    engine.onProcess = [&] { isFlushing = Modes::areDenormalsDisabled(); };
    run(makeBlock(16));
    EXPECT_TRUE(isFlushing);
    EXPECT_FALSE(Modes::areDenormalsDisabled());

    // Only std::exception is held back; what else passes must leave the host's modes whole, too.
    engine.onProcess = [] { throw 1; };
    EXPECT_THROW(run(makeBlock(16)), int);
    EXPECT_FALSE(Modes::areDenormalsDisabled());
    run(makeBlock(0));
    EXPECT_FALSE(Modes::areDenormalsDisabled());
}

TEST_F(AudioPathTest, StaysSilentUntilAFormatIsAccepted)
{
    engine.acceptsFormat = false;
    plugIn.prepareToPlay(rate, 16);
    plugIn.prepareToPlay(rate, 16);
    EXPECT_EQ(run(makeBlock(16)).getMagnitude(0, 16), 0.0f);
    EXPECT_EQ(engine.blocks, 0);

    engine.acceptsFormat = true;
    plugIn.prepareToPlay(44100.0, 16);
    EXPECT_EQ(run(makeBlock(16)).getSample(0, 0), 0.5f);
}

TEST_F(AudioPathTest, HoldsTheOutputBackByTheLeadLatency)
{
    engine.latency = {128, 5, 1.0};
    plugIn.prepareToPlay(rate, 64);
    EXPECT_EQ(plugIn.getLatencySamples(), 133);

    // Blocks of any length are one stream, delayed by 128.
    int position = 0;
    for (const int length : {32, 64, 1, 100, 64})
    {
        const auto out = run(makeBlock(length));
        for (int i = 0; i < length; ++i, ++position)
            ASSERT_EQ(out.getSample(1, i), position < 128 ? 0.0f : 1.0f) << position;
    }
}

TEST_F(AudioPathTest, TakesUpLatencyChangesWhilePlaying)
{
    engine.latency = {8, 4, 1.0};
    plugIn.prepareToPlay(rate, 16);

    engine.latency = {16, 4, 1.0};
    EXPECT_EQ(run(makeBlock(16)).getMagnitude(0, 16), 0.0f);
    EXPECT_EQ(plugIn.getLatencySamples(), 12) << "a change of the lead alone is not reported";

    engine.latency = {16, 6, 1.0};
    EXPECT_EQ(run(makeBlock(16)).getSample(0, 0), 0.5f);
    EXPECT_EQ(plugIn.getLatencySamples(), 22);

    auto louder = makeBlock(16);
    louder.applyGain(3.0f);
    engine.latency = {0, 6, 1.0};
    EXPECT_EQ(run(louder).getSample(0, 0), 1.5f) << "nothing of the old queue is left";
}

TEST_F(AudioPathTest, AFailedBlockIsSilentAndLeavesTheQueueShort)
{
    engine.latency = {8, 0, 1.0};
    plugIn.prepareToPlay(rate, 16);
    engine.onProcess = [] { throw std::runtime_error("IPP exception: no errors. "); };
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(run(makeBlock(16)).getMagnitude(0, 16), 0.0f);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "IPP exception: no errors. ");
    engine.onProcess = nullptr;

    // 8 zeros of the prefill, then the block: 24 are there, 16 go.
    const auto first = run(makeBlock(16));
    EXPECT_EQ(first.getSample(0, 7), 0.0f);
    EXPECT_EQ(first.getSample(0, 8), 0.5f);
}
