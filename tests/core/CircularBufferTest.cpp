#include "core/CircularBuffer.h"
#include "tests/core/TestSignals.h"

#include <gtest/gtest.h>

#include <random>

namespace vesk::audio
{
namespace
{

using test::makeNoiseSignal;
using test::toVector;
using Ring = CircularBuffer<Signal32>;

void moveOn(Ring& ring, int length) { ring.readPosition = (ring.readPosition + length) % ring.capacity; }

/** All that a two-channel ring was ever given, to ask for any stretch of it. */
struct History
{
    std::vector<float> channels[2];
    int forgotten = 0; ///< samples from the start that the ring may have lost: they count as zeros

    int size() const { return static_cast<int>(channels[0].size()); }

    void add(const Signal32& block)
    {
        for (int c = 0; c < 2; ++c)
            channels[c].insert(channels[c].end(), block.getChannelPtr(c),
                               block.getChannelPtr(c) + block.numSamples);
    }

    std::vector<float> get(int channel, int begin, int length) const
    {
        std::vector<float> result;
        for (int i = begin; i < begin + length; ++i)
            result.push_back(i < forgotten ? 0.0f : channels[channel][static_cast<std::size_t>(i)]);
        return result;
    }
};

TEST(CircularBuffer, ShowsTheCurrentBlockAndItsPastThroughWrapsAndGrowth)
{
    std::mt19937 random(11);
    Ring ring;
    ring.capacity = 200;
    ring.maxBlockSize = 50;
    History history;
    for (unsigned step = 0; step < 1500; ++step)
    {
        if (random() % 100 == 0 && ring.capacity < 2000)
        {
            // Growing keeps one capacity of the past and puts zeros before it.
            history.forgotten = std::max(history.forgotten, history.size() - ring.capacity);
            ring.resize(ring.capacity + static_cast<int>(random() % 200));
        }
        const bool longBlock = random() % 200 == 0;
        const int length = static_cast<int>(random() % 50) + (longBlock ? ring.maxBlockSize : 0);
        const auto block = makeNoiseSignal(2, length, step);
        const int begin = history.size();
        if (length > ring.maxBlockSize)
        {
            history.forgotten = std::max(history.forgotten, history.size() - ring.capacity);
            const int capacity = ring.capacity, margin = ring.maxBlockSize;
            ring.add(block);
            EXPECT_EQ(ring.maxBlockSize, std::max(2 * margin, length));
            EXPECT_EQ(ring.capacity, capacity + ring.maxBlockSize - margin);
        }
        else
            ring.add(block);
        history.add(block);

        // The ring holds capacity samples; the block has overwritten the oldest ones.
        for (const int back : {0, 1, 17, ring.capacity - length, static_cast<int>(random() % 200)})
        {
            const int past = std::min(back, ring.capacity - length);
            const auto seen = ring.peek(-past, length + past);
            for (int c = 0; c < 2; ++c)
                ASSERT_EQ(toVector(seen, c), history.get(c, begin - past, length + past))
                    << step << ' ' << past;
        }
        moveOn(ring, length);
    }
    EXPECT_GT(ring.maxBlockSize, 50) << "the run has met a long block";
}

TEST(CircularBuffer, ABlockLongerThanTheWholeRingComesBackWhole)
{
    Ring ring;
    ring.capacity = 64;
    ring.maxBlockSize = 16;
    const auto block = makeNoiseSignal(1, 1000, 3);
    ring.add(block);
    EXPECT_EQ(toVector(ring.peek(0, 1000), 0), toVector(block, 0));
    EXPECT_EQ(toVector(ring.peek(-48, 48), 0), std::vector<float>(48, 0.0f));
}

TEST(CircularBuffer, ShrinkingWrapsThePositionsAndKeepsTheMemory)
{
    Ring ring;
    ring.capacity = 100;
    ring.add(makeNoiseSignal(1, 70, 4));
    moveOn(ring, 70);
    const auto memory = ring.buffer.data;
    ring.resize(60);
    EXPECT_EQ(ring.capacity, 60);
    EXPECT_EQ(ring.writePosition, 10);
    EXPECT_EQ(ring.readPosition, 10);
    EXPECT_EQ(ring.buffer.data, memory);

    const auto block = makeNoiseSignal(1, 60, 5);
    ring.add(block);
    EXPECT_EQ(toVector(ring.peek(0, 60), 0), toVector(block, 0));
}

TEST(CircularBuffer, ClearForgetsAllButTheSizes)
{
    Ring ring;
    EXPECT_EQ(ring.peek(-10, 20).numChannels, 0) << "no channels before the first block";
    ring.resize(500);
    EXPECT_EQ(ring.buffer.data, nullptr) << "no memory before the first block";
    ring.add(makeNoiseSignal(2, 5000, 6));
    const int capacity = ring.capacity, margin = ring.maxBlockSize;
    ring.clear();
    EXPECT_EQ(ring.numChannels, -1);
    EXPECT_EQ(ring.buffer.data, nullptr);
    EXPECT_EQ(ring.writePosition + ring.readPosition, 0);
    EXPECT_EQ(ring.capacity, capacity);
    EXPECT_EQ(ring.maxBlockSize, margin);

    ring.add(Signal32(1, 10, 1.0f));
    EXPECT_EQ(ring.numChannels, 1);
    EXPECT_EQ(toVector(ring.peek(-100, 100), 0), std::vector<float>(100, 0.0f));
}

} // namespace
} // namespace vesk::audio
