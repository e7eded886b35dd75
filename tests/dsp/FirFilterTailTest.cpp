// The tail that plays a FirFilter's long partitions, and its turns with them.

#include "dsp/FirFilter.h"
#include "tests/dsp/Measures.h"

namespace vesk::audio
{

using namespace test;

namespace
{
using Blocks = std::vector<int>;

/** A few taps all over each channel of a response, some of them where slices and partitions meet. */
Signal32 makeEchoes(int channels, int length, unsigned seed)
{
    Signal32 response(channels, length, 0.0f);
    const auto values = makeNoise(channels * 40, seed);
    for (int c = 0; c < channels; ++c)
        for (int i = 0; i < 40; ++i)
        {
            const int tap = i < 20 ? i * length / 20 + c : std::min((i - 19) * 1024 - i % 2, length - 1);
            response.getWriteChannelPtr(c)[tap] = values[static_cast<std::size_t>(40 * c + i)];
        }
    return response;
}

/** From sample begin on. */
void expectSum(const Signal32& output, int k, const Signal32& input, const Signal32& response, int begin)
{
    std::vector<double> expected(static_cast<std::size_t>(output.numSamples));
    for (int c = 0; c < input.numChannels; ++c)
        for (int tap = 0; tap < response.numSamples; ++tap)
            if (const double gain = response.getChannelPtr(c)[tap]; gain != 0.0)
                for (int i = tap; i < output.numSamples; ++i)
                    expected[static_cast<std::size_t>(i)] += gain * input.getChannelPtr(c)[i - tap];
    const auto skipped = static_cast<std::size_t>(begin);
    EXPECT_LT(maxDifference(getChannel(output, k).subspan(skipped), std::span(expected).subspan(skipped)),
              1e-4)
        << "output " << k;
}
} // namespace

TEST(FirFilterTail, AndPartitionsTakeTurnsWithoutAGap)
{
    const Blocks patterns[] = {{64},
                               {100},
                               {1024},
                               {1500},
                               {37, 2048, 2048, 64, 64, 64, 4096, 100, 8192, 1, 999},
                               {4096, 4096, 256, 256, 256, 256, 2048, 512, 333}};
    for (const int channels : {1, 2, 3})
        for (const int length : {3200, 7000, 50000})
        {
            const auto input = makeNoiseSignal(channels, length + 20000, 1);
            const std::vector<Signal32> responses = {makeEchoes(channels, length, 2),
                                                     makeEchoes(channels, length * 3 / 4, 3)};
            FirFilter filter;
            filter.setMultipleIRs(responses);
            ASSERT_NE(filter.tail, nullptr);
            for (const auto& blocks : patterns)
            {
                SCOPED_TRACE(testing::Message()
                             << channels << " channels, " << length << " taps, blocks from " << blocks[0]);
                const auto sums = processInBlocks(
                    input, blocks, [&](const Signal32& block) { return filter.processSummed(block); });
                expectSum(sums, 0, input, responses[0], 0);
                expectSum(sums, 1, input, responses[1], 0);
                filter.reset();
            }
        }
}

TEST(FirFilterTail, FollowsNewResponses)
{
    const auto input = makeNoiseSignal(2, 60000, 4);
    constexpr int asTheyCome = 0;
    const auto test = [&](int block, int preparedFor)
    {
        FirFilter filter(makeEchoes(2, 9000, 5));
        int start = 0;
        // More slices, fewer, longer ones, none.
        for (const int length : {9000, 12000, 4000, 30000, 500})
        {
            const auto response = makeEchoes(2, length, 6 + unsigned(length));
            if (preparedFor == asTheyCome)
                filter.setImpulseResponse(response);
            else
                filter.takeIRs(*filter.prepareIRs({response}, preparedFor));
            const int count = 12000 / block * block;
            const auto output =
                processInBlocks(slice(input, start, count), {block},
                                [&](const Signal32& samples) { return filter.process(samples); });
            SCOPED_TRACE(testing::Message() << length << " taps, blocks of " << block
                                            << ", prepared for blocks of " << preparedFor);
            for (int c = 0; c < 2; ++c)
            {
                Signal32 past(1, start + count), taps(1, length), whole(1, start + count, 0.0f);
                std::copy_n(input.getChannelPtr(c), start + count, past.getWriteChannelPtr(0));
                std::copy_n(response.getChannelPtr(c), length, taps.getWriteChannelPtr(0));
                std::copy_n(output.getChannelPtr(c), count, whole.getWriteChannelPtr(0) + start);
                // What was queued is of the former response.
                expectSum(whole, 0, past, taps, start + 8192);
            }
            start += count;
        }
    };
    for (const int block : {64, 100, 1024})
        for (const int preparedFor : {asTheyCome, block, 512})
            test(block, preparedFor);
}

TEST(FirFilterTail, NothingIsLeftToWorkOutWhenPreparedResponsesAreTaken)
{
    for (const int block : {32, 64, 100, 512, 1024, 8192})
        for (const int length : {500, 9000, 30000, 96000})
        {
            FirFilter filter;
            filter.setLoadDistribution(true, 4);
            filter.setImpulseResponse(makeEchoes(2, 9000, 1));
            filter.process(makeNoiseSignal(2, block, 3));
            const auto prepared = filter.prepareIRs({makeEchoes(2, length, 2)}, filter.blockSize);
            filter.takeIRs(*prepared);

            // What was taken is no longer there.
            std::vector<const FirFilter::Partition*> parts = {
                prepared->tail.get(), prepared->blockPartition.get(), prepared->shortHead.get()};
            for (const auto& partition : prepared->partitions)
                parts.push_back(partition.get());
            for (const auto* part : parts)
                EXPECT_FALSE(part != nullptr && part->upToDate)
                    << part->getSize() << " from " << part->offset << " on, blocks of " << block << ", "
                    << length << " taps";
        }
}

} // namespace vesk::audio
