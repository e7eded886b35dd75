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
#include <memory>
#include <new>
#include <random>
#include <thread>
#include <vector>

using vesk::audio::AudioFormat;
using vesk::audio::Reverberation;
using vesk::audio::Signal32;

namespace
{
constexpr double rate = 48000.0;
constexpr int longestBlock = 4096;

/** More than the pre-delay and the largest partition hold. */
constexpr int comesRound = 30000;

/** What hosts use, and what they make of it around loops and at jumps. */
constexpr int blockLengths[] = {512, 64, 1, 16, 37, 100, 128, 255, 256, 441, 1000, 1024, 3001, 4096};

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

    /** Every parameter to its minimum (0) or maximum (1), or between. */
    void setAll(float position)
    {
        for (int index = 0; index < Reverberation::numParameters; ++index)
        {
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
    void warmUp()
    {
        for (const int length : blockLengths)
        {
            playFor(comesRound, length);
            for (const float position : {0.0f, 1.0f, 0.6f, 0.3f})
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

std::vector<std::unique_ptr<Stream>> makeStreams()
{
    std::vector<std::unique_ptr<Stream>> streams;
    for (const int channels : {2, 1})
        streams.push_back(std::make_unique<PlugInStream>(channels));
    streams.push_back(std::make_unique<EngineStream>(1, 2));
    streams.push_back(std::make_unique<EngineStream>(6, 6));
    return streams;
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

TEST(AllocationCounter, SeesItsOwnThreadOnly)
{
    std::atomic<bool> started{false};
    std::atomic<bool> done{false};
    std::thread other(
        [&]
        {
            while (!started.load())
                std::this_thread::yield();
            ::operator delete(::operator new(50));
            done.store(true);
        });
    {
        const AllocationCounter counter;
        started.store(true);
        while (!done.load())
            std::this_thread::yield();
        EXPECT_EQ(counter.getCalls(), 0);
    }
    other.join();
}

TEST(Allocation, NoneForAnyBlockLength)
{
    for (const auto& stream : makeStreams())
    {
        stream->warmUp();
        for (const int length : blockLengths)
            EXPECT_EQ(stream->playFor(2 * longestBlock, length), 0) << length;

        std::mt19937 generator(2);
        int calls = 0;
        for (int block = 0; block < 2000; ++block)
            calls += stream->play(blockLengths[generator() % std::size(blockLengths)]);
        EXPECT_EQ(calls, 0) << "mixed";
        EXPECT_EQ(stream->playFor(comesRound, 100, false, true), 0) << "bypassed";
        EXPECT_EQ(stream->playFor(comesRound, 100), 0) << "and back";
    }
}

TEST(Allocation, NoneInSilenceAndOnReturn)
{
    PlugInStream stream(2);
    stream.getEngine().setParameterValue(Reverberation::reverbTime, 0.5f, true);
    stream.playFor(comesRound, 256);
    EXPECT_EQ(stream.playFor(static_cast<int>(2 * rate), 256, true), 0) << "the stages come to rest";
    EXPECT_EQ(stream.playFor(comesRound, 256), 0) << "and run again";
}

TEST(Allocation, NoneWhileOtherThreadsChangeEverything)
{
    for (const int channels : {2, 1})
    {
        PlugInStream stream(channels);
        stream.warmUp();

        auto& plugIn = stream.plugIn;
        ASSERT_GT(plugIn.getNumPrograms(), 1);
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
                    stream.setAll(position());
                    plugIn.setCurrentProgram(static_cast<int>(generator()) % plugIn.getNumPrograms());
                    juce::MemoryBlock state;
                    plugIn.getStateInformation(state);
                    plugIn.setStateInformation(state.getData(), static_cast<int>(state.getSize()));
                }
            });

        int calls = 0;
        for (int block = 0; block < 1000 || rounds.load() < 20; ++block)
            calls += stream.play(blockLengths[static_cast<std::size_t>(block / 10) % std::size(blockLengths)],
                                 block % 200 > 180, block % 100 > 90);
        running.store(false);
        other.join();
        EXPECT_EQ(calls, 0);
    }
}
