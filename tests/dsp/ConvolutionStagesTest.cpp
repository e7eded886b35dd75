#include "dsp/FirFilter.h"
#include "tests/core/TestSignals.h"

#include <gtest/gtest.h>

namespace vesk::audio
{
namespace
{

using test::convolve;
using test::getChannel;
using test::makeNoiseSignal;
using test::maxDifference;
using test::slice;
using test::toVector;

constexpr double tolerance = 3e-5;

/** A partition with the ring it reads from. */
struct PartitionRig
{
    PartitionRig(const std::vector<Signal32>& responses, int offset, int size)
        : partition(responses[0].numChannels, static_cast<int>(responses.size()), offset, size)
    {
        ring.capacity = 8192;
        partition.setImpulseResponses(responses);
    }

    /** One result for each response. */
    std::vector<Signal32> process(const Signal32& block)
    {
        std::vector<Signal32> outputs(partition.queues.size(), Signal32(block.numChannels, block.numSamples));
        ring.add(block);
        partition.process(ring, outputs);
        ring.readPosition = ring.writePosition;
        return outputs;
    }

    Signal32 processSummed(const Signal32& block)
    {
        Signal32 output(partition.numImpulseResponses, block.numSamples);
        ring.add(block);
        partition.processSummed(ring, output);
        ring.readPosition = ring.writePosition;
        return output;
    }

    FirFilter::Partition partition;
    CircularBuffer<Signal32> ring;
};

/** Taps begin to end of a response, the others silent. */
Signal32 keepTaps(const Signal32& response, int begin, int end)
{
    Signal32 result(response.numChannels, response.numSamples, 0.0f);
    for (int c = 0; c < response.numChannels; ++c)
        for (int k = begin; k < std::min(end, response.numSamples); ++k)
            result.getWriteChannelPtr(c)[k] = response.getChannelPtr(c)[k];
    return result;
}

TEST(Partition, AnImpulseInItsSliceDelaysByThatTap)
{
    for (const int block : {1, 64, 100, 128, 300, 1000})
    {
        Signal32 response(1, 400, 0.0f);
        response.getWriteChannelPtr(0)[128 + 3] = 1.0f;
        PartitionRig rig({response}, 128, 128);
        const auto input = makeNoiseSignal(1, 2000, 1);
        std::vector<float> output;
        for (int done = 0; done < 2000; done += block)
        {
            const auto result = toVector(rig.process(slice(input, done, std::min(block, 2000 - done)))[0], 0);
            output.insert(output.end(), result.begin(), result.end());
        }
        EXPECT_LT(maxDifference(std::span(output).first(131), std::vector<float>(131)), 1e-6) << block;
        EXPECT_LT(maxDifference(std::span(output).subspan(131), getChannel(input, 0).first(2000 - 131)), 1e-6)
            << block;
    }
}

TEST(Partition, ComputesAFrameInTheFirstBlockThatHoldsItsEnd)
{
    const auto countFrames = [](int block, int numBlocks)
    {
        PartitionRig rig({makeNoiseSignal(1, 256, 2)}, 128, 128);
        std::vector<std::int64_t> frames;
        for (int i = 0; i < numBlocks; ++i)
        {
            const auto before = rig.partition.queues[0].numSamples;
            rig.process(makeNoiseSignal(1, block, unsigned(i)));
            const auto after = rig.partition.queues[0].numSamples;
            EXPECT_GE(after, 0) << "at least a block was there to take";
            frames.push_back((after + block - before) / 128);
        }
        return frames;
    };
    // The first frame holds the silent past alone; then one comes due whenever 128 more samples are in.
    EXPECT_EQ(countFrames(64, 7), (std::vector<std::int64_t>{1, 1, 0, 1, 0, 1, 0}));
    EXPECT_EQ(countFrames(100, 6), (std::vector<std::int64_t>{1, 1, 1, 1, 0, 1}));
    EXPECT_EQ(countFrames(128, 3), (std::vector<std::int64_t>{2, 1, 1}));
    EXPECT_EQ(countFrames(300, 3), (std::vector<std::int64_t>{3, 2, 3}));
}

TEST(Partition, ResponsesHaveIndependentQueuesOfEqualFill)
{
    // The second response ends inside the slice, the third before it.
    const std::vector<Signal32> responses = {makeNoiseSignal(2, 600, 3), makeNoiseSignal(2, 300, 4),
                                             makeNoiseSignal(2, 90, 5)};
    const auto input = makeNoiseSignal(2, 3000, 6);
    PartitionRig rig(responses, 256, 256), summed(responses, 256, 256);
    std::vector<std::vector<double>> expected;
    for (const auto& response : responses)
        for (int c = 0; c < 2; ++c)
            expected.push_back(convolve(getChannel(input, c), getChannel(keepTaps(response, 256, 512), c)));
    for (int done = 0; done < 3000; done += 100)
    {
        const auto results = rig.process(slice(input, done, 100));
        const auto sums = summed.processSummed(slice(input, done, 100));
        for (std::size_t k = 0; k < 3; ++k)
        {
            EXPECT_EQ(rig.partition.queues[k].numSamples, rig.partition.queues[0].numSamples);
            const auto left = std::span(expected[2 * k]).subspan(std::size_t(done), 100),
                       right = std::span(expected[2 * k + 1]).subspan(std::size_t(done), 100);
            EXPECT_LT(maxDifference(getChannel(results[k], 0), left), tolerance);
            EXPECT_LT(maxDifference(getChannel(results[k], 1), right), tolerance);
            std::vector<double> sum(left.begin(), left.end());
            for (std::size_t i = 0; i < 100; ++i)
                sum[i] += right[i];
            EXPECT_LT(maxDifference(getChannel(sums, static_cast<int>(k)), sum), tolerance);
        }
    }
    EXPECT_EQ(toVector(rig.process(slice(input, 0, 100))[2], 0), std::vector<float>(100));
}

TEST(Partition, AtOffsetZeroGivesEachBlockItsOwnOutput)
{
    const auto response = makeNoiseSignal(1, 256, 7), input = makeNoiseSignal(1, 2048, 8);
    const auto expected = convolve(getChannel(input, 0), getChannel(response, 0));
    PartitionRig rig({response}, 0, 256);
    for (int done = 0; done < 2048; done += 256)
    {
        const auto output = rig.process(slice(input, done, 256))[0];
        EXPECT_LT(maxDifference(getChannel(output, 0), std::span(expected).subspan(std::size_t(done), 256)),
                  tolerance);
        EXPECT_EQ(rig.partition.queues[0].numSamples, 0) << "one frame for each block";
    }
}

TEST(Partition, NewSpectraKeepTheQueuesAndResetDropsThem)
{
    PartitionRig rig({makeNoiseSignal(1, 256, 9)}, 128, 128);
    rig.process(makeNoiseSignal(1, 100, 10));
    EXPECT_EQ(rig.partition.queues[0].numSamples, 28);
    rig.partition.setImpulseResponses({makeNoiseSignal(1, 300, 11)});
    EXPECT_EQ(rig.partition.queues[0].numSamples, 28);
    EXPECT_EQ(rig.partition.impulseResponseLength, 300);
    rig.partition.reset();
    EXPECT_EQ(rig.partition.queues[0].numSamples, 0);
}

//==============================================================================

/** What the head must give for a stream of a past and a block. */
std::vector<double> convolveWithPast(const Signal32& past, const Signal32& block, const Signal32& taps,
                                     int channel)
{
    const auto stream = Signal32::concatenate(past, block);
    const auto all = convolve(getChannel(stream, channel), getChannel(taps, channel));
    return {all.begin() + past.numSamples, all.end()};
}

TEST(IppFirFilter, AllResponsesStartFromOnePast)
{
    for (const int taps : {1, 2, 50, 128})
    {
        const std::vector<Signal32> heads = {makeNoiseSignal(2, taps, 12), makeNoiseSignal(2, taps, 13)};
        FirFilter::IppFirFilter separate, summed;
        separate.setFilter(heads);
        summed.setFilter(heads);
        Signal32 past(2, 0);
        for (const int length : {10, 1, 300, 0, 64})
        {
            const auto block = makeNoiseSignal(2, length, unsigned(length) + 14);
            const auto results = separate.process(block);
            const auto sums = summed.processSummed(block);
            ASSERT_EQ(results.size(), 2u);
            ASSERT_EQ(sums.numChannels, 2);
            for (int k = 0; k < 2; ++k)
            {
                const auto& head = heads[std::size_t(k)];
                auto expected = convolveWithPast(past, block, head, 0);
                const auto right = convolveWithPast(past, block, head, 1);
                EXPECT_LT(maxDifference(getChannel(results[std::size_t(k)], 0), expected), tolerance);
                EXPECT_LT(maxDifference(getChannel(results[std::size_t(k)], 1), right), tolerance);
                for (std::size_t i = 0; i < expected.size(); ++i)
                    expected[i] += right[i];
                EXPECT_LT(maxDifference(getChannel(sums, k), expected), tolerance);
            }
            past = Signal32::concatenate(past, block);
        }
    }
}

TEST(IppFirFilter, TheDelayLineCanBeReplacedByALongOrAShortPast)
{
    FirFilter::IppFirFilter filter;
    filter.setDelayLine(makeNoiseSignal(1, 10, 15));
    EXPECT_EQ(filter.delayLine.data, nullptr) << "nothing to do before there is a filter";

    const auto block = makeNoiseSignal(1, 100, 16);
    for (const int taps : {1, 2, 50, 128})
        for (const int length : {0, 1, 7, taps - 1, taps, taps + 1, 500})
        {
            const auto head = makeNoiseSignal(1, taps, 17), past = makeNoiseSignal(1, length, 18);
            filter.setFilter({head});
            filter.process(makeNoiseSignal(1, 200, 19));
            filter.setDelayLine(past);
            EXPECT_LT(maxDifference(getChannel(filter.process(block)[0], 0),
                                    convolveWithPast(past, block, head, 0)),
                      tolerance)
                << taps << " taps, past of " << length;
        }
}

TEST(IppFirFilter, NewTapsKeepThePastUnlessTheShapeChanges)
{
    const auto past = makeNoiseSignal(1, 200, 20), block = makeNoiseSignal(1, 100, 21);
    struct Row
    {
        int taps;
        std::size_t responses;
        bool keepsPast;
    };
    for (const auto& [taps, responses, keepsPast] : {Row{50, 1, true}, {49, 1, false}, {50, 2, false}})
    {
        FirFilter::IppFirFilter filter;
        filter.setFilter({makeNoiseSignal(1, 50, 22)});
        filter.process(past);
        const auto head = makeNoiseSignal(1, taps, 23);
        filter.setFilter(std::vector<Signal32>(responses, head));
        const auto expected = convolveWithPast(keepsPast ? past : Signal32(1, 0), block, head, 0);
        EXPECT_LT(maxDifference(getChannel(filter.process(block)[0], 0), expected), tolerance) << taps;
    }

    FirFilter::IppFirFilter filter;
    filter.setFilter({makeNoiseSignal(1, 50, 24)});
    const auto fresh = toVector(filter.process(block)[0], 0);
    filter.reset();
    EXPECT_EQ(toVector(filter.process(block)[0], 0), fresh);
}

} // namespace
} // namespace vesk::audio
