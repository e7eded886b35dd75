/** Once a stream has met a block length and a kind of change, its thread asks the system for no memory and gives none
    back: whatever lengths follow, whatever the signal, and whatever other threads change meanwhile. */
#include "core/MemoryPool.h"
#include "product/AmbrelAudioProcessor.h"
#include "reverb/Reverberation.h"
#include "tests/realtime/AllocationCounter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>
#include <random>
#include <span>
#include <thread>
#include <vector>

using vesk::audio::AudioFormat;
using vesk::audio::Reverberation;
using vesk::audio::Signal32;

namespace
{
constexpr double rate = 48000.0;
constexpr int longestBlock = 4096;

/** What hosts use, and what they make of it around loops and at jumps. */
constexpr int blockLengths[] = {512, 64, 1, 37, 100, 128, 255, 256, 1000, 1024, 3001, 4096};
constexpr int fewBlockLengths[] = {512, 64, 100};

/** More than the pre-delay and the largest partition hold, and more blocks than a queue's own tables. */
int getSamplesUntilAllIsMet(int blockLength)
{
    constexpr int samples = 30000;
    constexpr int blocks = 400;
    return std::max(samples, blocks * blockLength);
}

/** A stream through something that processes blocks in place; counts its thread's calls for memory. */
class Stream
{
public:
    virtual ~Stream() = default;
    virtual void process(int length, bool bypassed) = 0;
    virtual vesk::audio::BaseAudioProcessor& getEngine() = 0;

    /** @returns the calls of one block */
    int play(int length, bool silent = false, bool bypassed = false)
    {
        for (int channel = 0; channel < memory.getNumChannels(); ++channel)
            for (int i = 0; i < length; ++i)
                memory.setSample(channel, i, silent ? 0.0f : noise(generator));
        return countProcess(length, bypassed);
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
            float low = 0.0f;
            float high = 0.0f;
            getEngine().getParameterRange(index, low, high);
            // Muted, a stage would not be met.
            const bool isSwitch = index >= Reverberation::muteDry;
            getEngine().setParameterValue(index, isSwitch ? 0.0f : low + position * (high - low), false);
        }
        getEngine().effectuateParameterChanges();
    }

    /** All lengths, each with all parameters in motion, at rest, and muted. */
    void warmUp(std::span<const int> lengths)
    {
        for (const float position : {1.0f, 0.6f, 0.3f, 0.0f})
        {
            setAll(position);
            playFor(getSamplesUntilAllIsMet(512), 512);
        }
        for (const int length : lengths)
        {
            playFor(getSamplesUntilAllIsMet(length), length);
            for (const float position : {0.0f, 1.0f, 0.5f})
            {
                setAll(position);
                for (int block = 0; block < 4; ++block)
                    play(length);
            }
            for (int mute = Reverberation::muteDry; mute <= Reverberation::muteEarly; ++mute)
            {
                getEngine().setParameterValue(mute, 1.0f, false);
                play(length);
                getEngine().setParameterValue(mute, 0.0f, false);
            }
            play(length, false, true);
        }
    }

protected:
    juce::AudioBuffer<float> memory{6, longestBlock};

private:
    int countProcess(int length, bool bypassed)
    {
        prepare(length);
        const AllocationCounter counter;
        process(length, bypassed);
        return counter.getCalls();
    }

    /** Hands over the block, outside of what is counted. */
    virtual void prepare(int length) = 0;

    std::mt19937 generator{1};
    std::uniform_real_distribution<float> noise{-0.5f, 0.5f};
};

class PlugInStream : public Stream
{
public:
    explicit PlugInStream(int channels)
    {
        EXPECT_TRUE(
            plugIn.setPreferredBusArrangement(true, 0, juce::AudioChannelSet::canonicalChannelSet(channels)));
        plugIn.prepareToPlay(rate, longestBlock);
    }

    void prepare(int length) override
    {
        buffer.setDataToReferTo(memory.getArrayOfWritePointers(), plugIn.getTotalNumInputChannels(), length);
    }

    void process(int, bool bypassed) override
    {
        bypassed ? plugIn.processBlockBypassed(buffer, midi) : plugIn.processBlock(buffer, midi);
    }

    vesk::audio::BaseAudioProcessor& getEngine() override { return *plugIn.getBaseProcessor(); }

    AmbrelAudioProcessor plugIn;

private:
    juce::AudioBuffer<float> buffer;
    juce::MidiBuffer midi;
};

/** For the channel layouts that hosts do not get. */
class EngineStream : public Stream
{
public:
    EngineStream(int inputs, int outputs)
    {
        engine.expectedBlockSize = longestBlock;
        EXPECT_TRUE(engine.setFormat(AudioFormat(inputs, rate), AudioFormat(outputs, rate)));
        engine.reset();
    }

    void prepare(int length) override
    {
        input = Signal32(engine.inputFormat.numChannels, length);
        for (int channel = 0; channel < input.numChannels; ++channel)
            std::copy_n(memory.getReadPointer(channel), length, input.getWriteChannelPtr(channel));
    }

    void process(int, bool bypassed) override
    {
        const vesk::audio::StreamScope scope;
        engine.process(input, bypassed);
    }

    vesk::audio::BaseAudioProcessor& getEngine() override { return engine; }

private:
    Reverberation engine;
    Signal32 input;
};

/** Blocks of all lengths in disorder, as around a loop that a host plays again and again. They end where the largest
    partition does, so that after some rounds every coincidence of frames has been met. */
std::vector<int> makePattern(std::span<const int> lengths)
{
    constexpr std::size_t count = 63;
    constexpr int cycle = 8192;
    std::mt19937 generator(2);
    std::vector<int> pattern;
    int total = 0;
    while (pattern.size() + 2 < count)
        total += pattern.emplace_back(lengths[generator() % lengths.size()]);
    const int rest = cycle - total % cycle;
    pattern.push_back(rest / 2);
    pattern.push_back(rest - rest / 2);
    return pattern;
}

void expectNoCalls(Stream& stream, std::span<const int> lengths)
{
    stream.warmUp(lengths);
    const auto pattern = makePattern(lengths);
    const auto playPattern = [&](int times)
    {
        int calls = 0;
        for (int round = 0; round < times; ++round)
            for (const int length : pattern)
                calls += stream.play(length);
        return calls;
    };
    playPattern(20);

    for (const int length : lengths)
        EXPECT_EQ(stream.playFor(2 * longestBlock, length), 0) << length;
    playPattern(2);
    EXPECT_EQ(playPattern(10), 0) << "mixed";
    EXPECT_EQ(stream.playFor(longestBlock, 100, false, true), 0) << "bypassed";
    EXPECT_EQ(stream.playFor(longestBlock, 100), 0) << "and back";
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
    EXPECT_EQ(counter.getCalls(), 3);
    block = std::calloc(3, 5);
    std::free(block);
    block = std::aligned_alloc(64, 128);
    std::free(block);
    EXPECT_EQ(counter.getCalls(), 7);
    block = ::operator new(50);
    ::operator delete(block);
    block = ::operator new(50, std::align_val_t(128));
    ::operator delete(block, std::align_val_t(128));
    EXPECT_EQ(counter.getCalls(), 11);
    std::free(nullptr);
    EXPECT_EQ(counter.getCalls(), 11);
}

TEST(Allocation, NoneForAnyBlockLength)
{
    for (const int channels : {2, 1})
    {
        SCOPED_TRACE(channels);
        PlugInStream stream(channels);
        expectNoCalls(stream, blockLengths);
    }
}

TEST(Allocation, NoneForOtherChannelLayouts)
{
    EngineStream upMix(1, 2);
    expectNoCalls(upMix, fewBlockLengths);
    EngineStream surround(6, 6);
    expectNoCalls(surround, fewBlockLengths);
}

TEST(Allocation, NoneInSilenceAndOnReturn)
{
    constexpr int length = 256;
    PlugInStream stream(2);
    stream.getEngine().setParameterValue(Reverberation::reverbTime, 0.5f, true);
    stream.playFor(2 * getSamplesUntilAllIsMet(length), length);
    EXPECT_EQ(stream.playFor(static_cast<int>(2 * rate), length, true), 0) << "the stages come to rest";
    EXPECT_EQ(stream.playFor(static_cast<int>(rate), length), 0) << "and run again";
}

TEST(Allocation, NoneWhileOtherThreadsChangeEverything)
{
    // Longer responses than any before have partitions that the stream has not met: those of the programs it meets
    // first, and other changes leave the length alone.
    PlugInStream stream(2);
    stream.warmUp(blockLengths);
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
