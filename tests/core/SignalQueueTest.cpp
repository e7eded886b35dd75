#include "core/SignalQueue.h"
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

TEST(SignalQueue, BlocksWithoutSamplesDoNotCount)
{
    SignalQueue<Signal32> queue;
    queue.add(Signal32::empty);
    queue.add(Signal32(3, 0));
    EXPECT_EQ(queue.numChannels, -1);
    EXPECT_EQ(queue.get(4).data, nullptr);
    EXPECT_EQ(queue.peek(4).numChannels, 0);
    EXPECT_EQ(queue.peek(2, 4).numSamples, 0);

    queue.add(makeNoiseSignal(2, 5, 1));
    queue.get(5);
    EXPECT_EQ(queue.get(0).numChannels, 2) << "the channel count outlives the samples";
    queue.add(makeNoiseSignal(2, 5, 1));
    queue.clear();
    EXPECT_EQ(queue.numChannels, -1);
    EXPECT_EQ(queue.numSamples, 0);
}

TEST(SignalQueue, BehavesAsOneStreamUnderAnyMixOfOperations)
{
    std::mt19937 random(7);
    const auto upTo = [&](int limit)
    { return static_cast<int>(random() % static_cast<unsigned>(limit + 1)); };
    const auto stream = makeNoiseSignal(2, 100000, 1);
    SignalQueue<Signal32> queue;
    queue.add(slice(stream, 0, 1));
    int written = 1, read = 0;
    for (int step = 0; step < 3000; ++step)
    {
        const int waiting = written - read;
        const int length = upTo(waiting);
        const auto oldest = slice(stream, read, length);
        switch (random() % 6)
        {
        case 0:
        case 1:
        {
            // What is queued is frozen, although it is shared with its producer.
            auto block = slice(stream, written, upTo(60));
            queue.add(block);
            written += block.numSamples;
            if (block.numSamples > 0)
                block.getWriteChannelPtr(0)[0] = 9.0f;
            break;
        }
        case 2:
        {
            // The destination may have fewer channels, and other owners.
            auto expected = oldest;
            expected.ensureDimensions(1 + upTo(1), length);
            const Signal32 kept(expected.numChannels, length, -1.0f);
            auto taken = kept;
            queue.get(taken);
            ASSERT_EQ(toVectors(taken), toVectors(expected));
            ASSERT_EQ(toVectors(kept), toVectors(Signal32(kept.numChannels, length, -1.0f)));
            read += length;
            break;
        }
        case 3:
        {
            Signal32 sum(2, length, 1.0f);
            queue.getAdding(sum);
            ASSERT_EQ(toVectors(sum), toVectors(Signal32(2, length, 1.0f) + oldest));
            read += length;
            break;
        }
        case 4:
        {
            // A negative offset counts as 0, and what lies behind the queue's end stays as it was.
            const int offset = upTo(waiting + 10) - 5;
            Signal32 destination(2, 50, -1.0f);
            queue.peek(offset, destination);
            for (int i = 0; i < 50; ++i)
            {
                const int index = std::max(offset, 0) + i;
                for (int c = 0; c < 2; ++c)
                    ASSERT_EQ(destination.getChannelPtr(c)[i],
                              index < waiting ? stream.getChannelPtr(c)[read + index] : -1.0f);
            }
            break;
        }
        default: queue.skip(length); read += length;
        }
        ASSERT_EQ(queue.numSamples, written - read);
        ASSERT_TRUE(queue.blocks.empty() ? queue.readOffset == 0
                                         : queue.readOffset < queue.blocks.front().numSamples);
    }
}

} // namespace
} // namespace vesk::audio
