/** Once a stream has met a block length and a kind of change, its thread asks the system for no memory and gives none
    back: whatever lengths follow, whatever the signal, and whatever other threads change meanwhile. */
#include "product/AmbrelAudioProcessor.h"
#include "reverb/Reverberation.h"
#include "tests/realtime/AllocationCounter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>
#include <random>
#include <thread>
#include <vector>

using vesk::audio::Reverberation;

namespace
{
constexpr double rate = 48000.0;
constexpr int longestBlock = 4096;

/** What hosts use, and what they make of it around loops and at jumps. */
constexpr int blockLengths[] = {512, 64, 1, 37, 100, 128, 255, 256, 1000, 1024, 3001, 4096};

/** More than the pre-delay and the largest partition hold, and more blocks than a queue's own tables. */
int getSamplesUntilAllIsMet(int blockLength)
{
    constexpr int samples = 30000;
    constexpr int blocks = 400;
    return std::max(samples, blocks * blockLength);
}

/** A stream through the plug-in; counts its thread's calls for memory. */
class Stream
{
public:
    explicit Stream(int channels)
    {
        EXPECT_TRUE(
            plugIn.setPreferredBusArrangement(true, 0, juce::AudioChannelSet::canonicalChannelSet(channels)));
        plugIn.prepareToPlay(rate, longestBlock);
    }

    /** @returns the calls of one block */
    int play(int length, bool silent = false, bool bypassed = false)
    {
        juce::AudioBuffer<float> block(memory.getArrayOfWritePointers(), plugIn.getTotalNumInputChannels(),
                                       length);
        for (int channel = 0; channel < block.getNumChannels(); ++channel)
            for (int i = 0; i < length; ++i)
                block.setSample(channel, i, silent ? 0.0f : noise(generator));
        const AllocationCounter counter;
        bypassed ? plugIn.processBlockBypassed(block, midi) : plugIn.processBlock(block, midi);
        return counter.getCalls();
    }

    /** @returns the calls of blocks for at least so many samples */
    int playFor(int samples, int length, bool silent = false, bool bypassed = false)
    {
        int calls = 0;
        for (int done = 0; done < samples; done += length)
            calls += play(length, silent, bypassed);
        return calls;
    }

    /** Every parameter to its minimum (0) or maximum (1), or between; if the length stays, without those that make the
        responses longer or shorter. */
    void setAll(float position, bool keepsLength = false)
    {
        for (int index = 0; index < Reverberation::numParameters; ++index)
        {
            if (keepsLength && (index == Reverberation::roomSize || index == Reverberation::earlyPattern))
                continue;
            float low = 0.0f, high = 0.0f;
            engine.getParameterRange(index, low, high);
            // Muted, a stage would not be met.
            const bool isSwitch = index >= Reverberation::muteDry;
            engine.setParameterValue(index, isSwitch ? 0.0f : low + position * (high - low), false);
        }
        engine.effectuateParameterChanges();
    }

    /** All lengths, each with all parameters in motion, at rest, and muted. */
    void warmUp()
    {
        for (const float position : {1.0f, 0.6f, 0.3f, 0.0f})
        {
            setAll(position);
            playFor(getSamplesUntilAllIsMet(512), 512);
        }
        for (const int length : blockLengths)
        {
            playFor(getSamplesUntilAllIsMet(length), length);
            for (const float position : {0.0f, 1.0f, 0.5f})
            {
                setAll(position);
                playFor(4 * length, length);
            }
            for (int mute = Reverberation::muteDry; mute <= Reverberation::muteEarly; ++mute)
            {
                engine.setParameterValue(mute, 1.0f, false);
                play(length);
                engine.setParameterValue(mute, 0.0f, false);
            }
            play(length, false, true);
        }
    }

    AmbrelAudioProcessor plugIn;
    vesk::audio::BaseAudioProcessor& engine = *plugIn.getBaseProcessor();

private:
    juce::AudioBuffer<float> memory{2, longestBlock};
    juce::MidiBuffer midi;
    std::mt19937 generator{1};
    std::uniform_real_distribution<float> noise{-0.5f, 0.5f};
};

/** Blocks of all lengths in disorder, as around a loop that a host plays again and again. They end where the largest
    partition does, so that after some rounds every coincidence of frames has been met. */
std::vector<int> makePattern()
{
    constexpr std::size_t count = 63;
    constexpr int cycle = 8192;
    std::mt19937 generator(2);
    std::vector<int> pattern;
    int total = 0;
    while (pattern.size() + 2 < count)
        total += pattern.emplace_back(blockLengths[generator() % std::size(blockLengths)]);
    const int rest = cycle - total % cycle;
    pattern.push_back(rest / 2);
    pattern.push_back(rest - rest / 2);
    return pattern;
}
} // namespace

TEST(AllocationCounter, SeesEveryKindOfCall)
{
    // Volatile, so that no pair of calls is optimised away.
    void* volatile block = nullptr;
    const AllocationCounter counter;
    block = std::malloc(100);
    block = std::realloc(block, 200000);
    std::free(block);
    block = std::calloc(3, 5);
    std::free(block);
    block = std::aligned_alloc(64, 128);
    std::free(block);
    EXPECT_EQ(counter.getCalls(), 7);
    block = ::operator new(50, std::align_val_t(128));
    ::operator delete(block, std::align_val_t(128));
    EXPECT_EQ(counter.getCalls(), 9);
    std::free(nullptr);
    EXPECT_EQ(counter.getCalls(), 9);
}

TEST(Allocation, NoneForAnyBlockLength)
{
    for (const int channels : {2, 1})
    {
        SCOPED_TRACE(channels);
        Stream stream(channels);
        stream.warmUp();
        const auto playPattern = [&, pattern = makePattern()](int times)
        {
            int calls = 0;
            for (int round = 0; round < times; ++round)
                for (const int length : pattern)
                    calls += stream.play(length);
            return calls;
        };
        playPattern(20);

        for (const int length : blockLengths)
            EXPECT_EQ(stream.playFor(2 * longestBlock, length), 0) << length;
        playPattern(2);
        EXPECT_EQ(playPattern(10), 0) << "mixed";
        EXPECT_EQ(stream.playFor(longestBlock, 100, false, true), 0) << "bypassed";
        EXPECT_EQ(stream.playFor(longestBlock, 100), 0) << "and back";
    }
}

TEST(Allocation, NoneInSilenceAndOnReturn)
{
    constexpr int length = 256;
    Stream stream(2);
    stream.engine.setParameterValue(Reverberation::reverbTime, 0.5f, true);
    stream.playFor(2 * getSamplesUntilAllIsMet(length), length);
    EXPECT_EQ(stream.playFor(static_cast<int>(2 * rate), length, true), 0) << "the stages come to rest";
    EXPECT_EQ(stream.playFor(static_cast<int>(rate), length), 0) << "and run again";
}

TEST(Allocation, NoneWhileOtherThreadsChangeEverything)
{
    // Longer responses than any before have partitions that the stream has not met: those of the programs it meets
    // first, and other changes leave the length alone.
    Stream stream(2);
    stream.warmUp();
    auto& plugIn = stream.plugIn;
    ASSERT_GT(plugIn.getNumPrograms(), 1);
    for (int program = 0; program < plugIn.getNumPrograms(); ++program)
    {
        plugIn.setCurrentProgram(program);
        for (const int length : {512, longestBlock, 3001, 64})
            stream.playFor(8 * longestBlock, length);
    }

    std::atomic<bool> running{true};
    std::atomic<int> rounds{0};
    std::thread other(
        [&]
        {
            std::mt19937 generator(3);
            const auto position = [&] { return static_cast<float>(generator() >> 8) * 0x1p-24f; };
            for (; running.load(); ++rounds)
            {
                plugIn.setParameter(static_cast<int>(generator() % 2), position());
                stream.setAll(position(), true);
                plugIn.setCurrentProgram(static_cast<int>(generator() >> 1) % plugIn.getNumPrograms());
                juce::MemoryBlock state;
                plugIn.getStateInformation(state);
                plugIn.setStateInformation(state.getData(), static_cast<int>(state.getSize()));
            }
        });

    const auto playDuringRounds = [&](int count)
    {
        int calls = 0;
        const int last = rounds.load() + count;
        for (int block = 0; block < 1000 || rounds.load() < last; ++block)
            calls += stream.play(blockLengths[static_cast<std::size_t>(block / 10) % std::size(blockLengths)],
                                 block % 200 > 180, block % 100 > 90);
        return calls;
    };
    playDuringRounds(10);
    EXPECT_EQ(playDuringRounds(20), 0);
    running.store(false);
    other.join();
}
