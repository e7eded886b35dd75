#include "core/SignalQueue.h"
#include "tests/core/TestSignals.h"

#include <gtest/gtest.h>

#include <deque>
#include <random>

namespace vesk::audio
{
namespace
{

using test::makeNoiseSignal;
using test::makeSignal;
using test::toVector;

TEST(SignalQueue, SharesBlocksWithTheirProducer)
{
    SignalQueue<Signal32> queue;
    auto block = makeSignal({{1, 2, 3}});
    queue.add(block);
    EXPECT_EQ(queue.blocks.front().data, block.data);

    block.getWriteChannelPtr(0)[0] = 9;
    EXPECT_EQ(toVector(queue.get(3), 0), (std::vector<float>{1, 2, 3})) << "what is queued is frozen";
}

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
    EXPECT_EQ(queue.numChannels, 2);
    queue.clear();
    EXPECT_EQ(queue.numChannels, -1);
    EXPECT_EQ(queue.numSamples, 0);
}

TEST(SignalQueue, GetCrossesBlockBorders)
{
    SignalQueue<Signal32> queue;
    for (const int length : {5, 7, 9})
        queue.add(makeNoiseSignal(1, length, 2));
    queue.get(15);
    EXPECT_EQ(queue.readOffset, 3);
    EXPECT_EQ(queue.blocks.size(), 1u);
    EXPECT_EQ(queue.numSamples, 6);
    queue.get(6);
    EXPECT_EQ(queue.readOffset, 0);
    EXPECT_TRUE(queue.blocks.empty());
    EXPECT_EQ(queue.get(0).numChannels, 1) << "the channel count outlives the samples";
}

TEST(SignalQueue, ADestinationMayHaveFewerChannelsAndOtherOwners)
{
    SignalQueue<Signal32> queue;
    queue.add(makeSignal({{1, 2, 3}, {4, 5, 6}}));
    Signal32 destination(1, 2, -1.0f);
    const auto kept = destination;
    queue.get(destination);
    EXPECT_EQ(toVector(destination, 0), (std::vector<float>{1, 2}));
    EXPECT_EQ(toVector(kept, 0), (std::vector<float>{-1, -1}));
}

TEST(SignalQueue, PeekStopsAtTheEnd)
{
    SignalQueue<Signal32> queue;
    queue.add(makeSignal({{1, 2, 3}}));
    queue.add(makeSignal({{4, 5}}));
    queue.skip(1);
    struct Row
    {
        int offset;
        std::vector<float> expected;
    };
    for (const auto& [offset, expected] : {Row{0, {2, 3, 4, 5, -1}},
                                           {-7, {2, 3, 4, 5, -1}},
                                           {2, {4, 5, -1, -1, -1}},
                                           {3, {5, -1, -1, -1, -1}},
                                           {4, {-1, -1, -1, -1, -1}},
                                           {1000, {-1, -1, -1, -1, -1}}})
    {
        Signal32 destination(1, 5, -1.0f);
        queue.peek(offset, destination);
        EXPECT_EQ(toVector(destination, 0), expected) << offset;
        EXPECT_EQ(queue.numSamples, 4);
        EXPECT_EQ(queue.readOffset, 1);
    }
}

TEST(SignalQueue, BehavesAsOneStreamUnderAnyMixOfOperations)
{
    std::mt19937 random(7);
    const auto upTo = [&](std::size_t limit) { return static_cast<int>(random() % (limit + 1)); };
    SignalQueue<Signal32> queue;
    std::deque<float> left, right;
    const auto expectFront = [&](const Signal32& taken, int offset)
    {
        for (int i = 0; i < taken.numSamples; ++i)
        {
            ASSERT_EQ(taken.getChannelPtr(0)[i], left[static_cast<std::size_t>(offset + i)]);
            ASSERT_EQ(taken.getChannelPtr(1)[i], right[static_cast<std::size_t>(offset + i)]);
        }
    };
    const auto drop = [&](int count)
    {
        left.erase(left.begin(), left.begin() + count);
        right.erase(right.begin(), right.begin() + count);
    };

    queue.add(Signal32(2, 1, 0.0f));
    left.push_back(0);
    right.push_back(0);
    for (unsigned step = 0; step < 3000 && !HasFatalFailure(); ++step)
    {
        switch (random() % 5)
        {
        case 0:
        case 1:
        {
            const auto block = makeNoiseSignal(2, upTo(40), step);
            queue.add(block);
            left.insert(left.end(), block.getChannelPtr(0), block.getChannelPtr(0) + block.numSamples);
            right.insert(right.end(), block.getChannelPtr(1), block.getChannelPtr(1) + block.numSamples);
            break;
        }
        case 2:
        {
            const auto taken = queue.get(upTo(left.size()));
            expectFront(taken, 0);
            drop(taken.numSamples);
            break;
        }
        case 3:
        {
            const int offset = upTo(left.size());
            expectFront(queue.peek(offset, upTo(left.size() - static_cast<std::size_t>(offset))), offset);
            break;
        }
        default:
        {
            const int count = std::min(upTo(left.size()), 30);
            queue.skip(count);
            drop(count);
        }
        }
        ASSERT_EQ(queue.numSamples, static_cast<std::int64_t>(left.size()));
        ASSERT_TRUE(queue.blocks.empty() ? queue.readOffset == 0
                                         : queue.readOffset < queue.blocks.front().numSamples);
    }
}

} // namespace
} // namespace vesk::audio
