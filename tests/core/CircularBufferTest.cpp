#include "core/CircularBuffer.h"
#include "tests/core/TestSignals.h"

#include <gtest/gtest.h>

#include <random>

namespace vesk::audio
{
namespace
{

using test::makeNoiseSignal;
using test::slice;
using test::toVectors;
using Ring = CircularBuffer<Signal32>;

void moveOn(Ring& ring, int length) { ring.readPosition = (ring.readPosition + length) % ring.capacity; }

TEST(CircularBuffer, ShowsTheCurrentBlockAndItsPastThroughWrapsAndGrowth)
{
    std::mt19937 random(11);
    const auto upTo = [&](int limit)
    { return static_cast<int>(random() % static_cast<unsigned>(limit + 1)); };
    Ring ring;
    ring.capacity = 200;
    ring.maxBlockSize = 50;

    // What the ring should hold: silence first, then what it has been given, up to position.
    auto history = makeNoiseSignal(2, 200000, 1);
    int position = 20000;
    const auto forgetBefore = [&](int end)
    {
        for (const int c : {0, 1})
            std::fill_n(history.getWriteChannelPtr(c), end, 0.0f);
    };
    forgetBefore(position);

    for (int step = 0; step < 1500; ++step)
    {
        // Growing keeps one capacity of the past and puts zeros before it.
        if (upTo(99) == 0 && ring.capacity < 2000)
        {
            forgetBefore(position - ring.capacity);
            ring.resize(ring.capacity + upTo(199));
        }
        const int capacity = ring.capacity, margin = ring.maxBlockSize;
        const int longer = capacity < 2000 ? capacity : margin;
        const int length = upTo(49) + (upTo(199) == 0 ? longer : 0);
        ring.add(slice(history, position, length));
        if (length > margin)
        {
            forgetBefore(position - capacity);
            EXPECT_EQ(ring.maxBlockSize, std::max(2 * margin, length));
            EXPECT_EQ(ring.capacity, capacity + ring.maxBlockSize - margin);
        }

        // The ring holds capacity samples; the block has overwritten the oldest ones.
        for (const int back : {0, 1, 17, ring.capacity - length, upTo(199)})
        {
            const int past = std::min(back, ring.capacity - length);
            ASSERT_EQ(toVectors(ring.peek(-past, length + past)),
                      toVectors(slice(history, position - past, length + past)))
                << step << ' ' << past;
        }
        moveOn(ring, length);
        position += length;
    }
    EXPECT_GT(ring.maxBlockSize, 200) << "the run has met blocks longer than the whole ring";
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
    EXPECT_EQ(toVectors(ring.peek(0, 60)), toVectors(block));
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
    EXPECT_EQ(ring.buffer.data, nullptr);
    EXPECT_EQ(ring.writePosition + ring.readPosition, 0);
    EXPECT_EQ(ring.capacity, capacity);
    EXPECT_EQ(ring.maxBlockSize, margin);

    ring.add(Signal32(1, 10, 1.0f));
    EXPECT_EQ(toVectors(ring.peek(-100, 100)), toVectors(Signal32(1, 100, 0.0f)));
}

} // namespace
} // namespace vesk::audio
