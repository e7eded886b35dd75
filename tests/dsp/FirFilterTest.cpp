#include "dsp/FirFilter.h"
#include "tests/dsp/Measures.h"

namespace vesk::audio
{

using namespace test;

namespace
{
using Blocks = std::vector<int>;

/** Rounding of transforms of some thousand samples of noise, and of sums of as many products. */
double getTolerance(int taps) { return 2e-6 * std::sqrt(static_cast<double>(taps)) + 1e-6; }

Signal32 run(FirFilter& filter, const Signal32& input, const Blocks& lengths)
{
    return processInBlocks(input, lengths, [&](const Signal32& block) { return filter.process(block); });
}

/** @param begin  of what counts of the output, in samples */
void expectConvolution(const Signal32& output, const Signal32& input, const Signal32& response, int begin = 0)
{
    for (int c = 0; c < response.numChannels; ++c)
    {
        const auto expected = convolve(getChannel(input, c), getChannel(response, c));
        const auto skipped = static_cast<std::size_t>(begin);
        const auto before = expected.size() - static_cast<std::size_t>(output.numSamples);
        EXPECT_LT(maxDifference(getChannel(output, c).subspan(skipped),
                                std::span(expected).subspan(before + skipped)),
                  getTolerance(response.numSamples))
            << "channel " << c;
    }
}

/** Noise in a few dozen places all over a long response, cheap for the reference; among them the borders of all
    partitions. */
Signal32 makeSparseResponse(int length, int loadDistributionPeriod)
{
    FirFilter schedule;
    schedule.setLoadDistribution(true, loadDistributionPeriod);
    schedule.setImpulseResponse(Signal32(1, length, 0.0f));
    std::vector<int> taps = {0, 1, 127, length - 1};
    for (const auto& partition : schedule.partitions)
        taps.insert(taps.end(), {partition->offset - 1, partition->offset,
                                 std::min(partition->offset + partition->fftSize / 2 - 1, length - 1)});
    for (int i = 1; i < 24; ++i)
        taps.push_back(static_cast<int>(static_cast<std::int64_t>(length) * i / 24));

    Signal32 response(1, length, 0.0f);
    const auto values = makeNoise(static_cast<int>(taps.size()), 70);
    for (std::size_t i = 0; i < taps.size(); ++i)
        response.getWriteChannelPtr(0)[taps[i]] = values[i];
    return response;
}
} // namespace

TEST(FirFilter, ScheduleCoversTheResponseInPartitionsThatAreReadyWhenTheyAreDue)
{
    struct Row
    {
        int length, period; ///< period 0: no load distribution
        std::vector<int> sizes;
    };
    for (const auto& [length, period, sizes] :
         {Row{1, 0, {}},
          {128, 0, {}},
          {129, 0, {2}},
          {130, 0, {4}},
          {255, 0, {128}},
          {256, 0, {128}},
          {257, 0, {128, 2}},
          {700, 0, {128, 256, 256}},
          {768, 0, {128, 256, 512}},
          {65536, 0, {128, 256, 512, 1024, 2048, 4096, 8192, 16384, 32768}},
          {700, 4, {128, 256, 256}},
          {200000, 4, {128, 256, 512, 1024, 2048, 1024, 4096, 8192, 16384, 32768, 16384, 65536, 65536}}})
    {
        FirFilter filter;
        filter.setLoadDistribution(period > 0, std::max(period, 1));
        filter.setImpulseResponse(Signal32(1, length, 0.0f));
        EXPECT_EQ(filter.partitionSizes, sizes) << length;
        EXPECT_EQ(filter.totalLength, std::max(length, 128));
        ASSERT_EQ(filter.partitions.size(), sizes.size());
        int offset = 128;
        for (std::size_t i = 0; i < sizes.size(); ++i)
        {
            EXPECT_EQ(filter.partitions[i]->fftSize, 2 * sizes[i]);
            EXPECT_EQ(filter.partitions[i]->offset, offset);
            EXPECT_GE(offset, sizes[i]) << "else a frame is not ready when it is due";
            offset += sizes[i];
        }
        EXPECT_GE(offset, length) << "the whole response is covered";
    }
}

TEST(FirFilter, IsOneLongConvolutionHoweverTheStreamIsCut)
{
    const Blocks blockPatterns[] = {
        {1},
        {32},
        {64},
        {64, 64, 64, 100, 32, 32, 64, 7, 128},
        {100},
        {128},
        {256},
        {480},
        {1024},
        {1000, 3},
        {127, 128, 129},
        {256, 256, 256, 256, 100, 100, 100},
        {1, 100, 127, 128, 129, 256, 1000, 256, 256, 5, 1024, 64, 512, 1024, 1024, 2048, 128, 128, 31},
        {256, 0, 100, 0, 0, 256},
        {64, 5000, 64, 9001, 128, 16384, 64}}; // longer than the ring's margin
    const auto input = makeNoiseSignal(2, 32000, 1);
    for (const int length : {1, 2, 40, 128, 129, 300, 700, 1024, 3000})
    {
        const auto response = makeNoiseSignal(2, length, 2);
        const std::vector<double> expected[] = {convolve(getChannel(input, 0), getChannel(response, 0)),
                                                convolve(getChannel(input, 1), getChannel(response, 1))};
        for (const auto& lengths : blockPatterns)
        {
            FirFilter filter(response);
            const auto output = run(filter, input, lengths);
            ASSERT_EQ(output.numChannels, 2);
            for (int c = 0; c < 2; ++c)
                EXPECT_LT(maxDifference(getChannel(output, c), expected[c]), getTolerance(length))
                    << length << " taps, blocks from " << lengths[0];
        }
    }
}

TEST(FirFilter, LoadDistributionChangesNothingOfTheSound)
{
    // Among these are lengths whose last partition looks back further than the response is long.
    for (const int period : {1, 2, 3, 4})
        for (const int length : {1000, 9000, 13317, 24000, 29000, 60000})
        {
            const auto response = makeSparseResponse(length, period);
            const auto input = makeNoiseSignal(1, length + 20000, 3);
            for (const Blocks& lengths : {Blocks{480}, {512}, {64, 1000, 256}})
            {
                FirFilter filter;
                filter.setLoadDistribution(true, period);
                filter.setImpulseResponse(response);
                SCOPED_TRACE(testing::Message()
                             << "period " << period << ", " << length << " taps, blocks from " << lengths[0]);
                expectConvolution(run(filter, input, lengths), input, response);
            }
        }
}

TEST(FirFilter, ALongHeadSilencesShiftedPartitionsThatReachBeyondIt)
{
    auto response = makeSparseResponse(20000, 4);
    FirFilter filter;
    filter.setLoadDistribution(true, 4);
    filter.setImpulseResponse(response);
    const auto input = makeNoiseSignal(1, 5 * 8192, 4);
    const auto output = run(filter, input, {8192});

    // The partitions at 4096 and 5120 rest, and the second one ends at 9216.
    std::fill(response.getWriteChannelPtr(0) + 8192, response.getWriteChannelPtr(0) + 9216, 0.0f);
    expectConvolution(output, input, response);
}

/** All on the same two filters: after a reset nothing of the past, and after new responses nothing of the old ones is
    left. */
TEST(FirFilter, SeveralResponsesSeparatelyAndAsAMatrix)
{
    struct Row
    {
        int channels;
        std::vector<int> lengths; ///< The first one tells the schedule; shorter ones end in silence.
    };
    FirFilter separate, matrix;
    for (const auto& [channels, lengths] : {Row{2, {700, 700, 700}},
                                            {2, {700, 200, 300}},
                                            {2, {700, 40, 1}},
                                            {2, {40, 40, 7}},
                                            {1, {700, 200}},
                                            {3, {700, 200}},
                                            {4, {700}}})
    {
        const auto input = makeNoiseSignal(channels, 20 * 256, 7);
        std::vector<Signal32> responses;
        for (const int length : lengths)
            responses.push_back(makeNoiseSignal(channels, length, 8 + unsigned(responses.size())));
        separate.setMultipleIRs(responses);
        matrix.setMultipleIRs(responses);
        // Partitions that are created under an FFT head run beside it, so another head comes first.
        for (const Blocks& blocks : {Blocks{100, 256, 256, 129}, {64}, {256}})
            for (std::size_t k = 0; k < responses.size(); ++k)
            {
                SCOPED_TRACE(testing::Message() << channels << " channels, response " << k << " of "
                                                << lengths[k] << " taps, blocks from " << blocks[0]);
                separate.reset();
                const auto output = processInBlocks(input, blocks,
                                                    [&](const Signal32& block)
                                                    { return separate.processMultiple(block).at(k); });
                expectConvolution(output, input, responses[k]);

                matrix.reset();
                const auto sums = processInBlocks(
                    input, blocks, [&](const Signal32& block) { return matrix.processSummed(block); });
                ASSERT_EQ(sums.numChannels, static_cast<int>(responses.size()));
                std::vector<double> expected;
                for (int c = 0; c < channels; ++c)
                    addConvolution(getChannel(input, c), getChannel(responses[k], c), expected);
                EXPECT_LT(maxDifference(getChannel(sums, static_cast<int>(k)), expected),
                          getTolerance(700 * channels));
            }
    }
}

TEST(FirFilter, ResultsBelongToTheCaller)
{
    const auto input = makeNoiseSignal(1, 512, 10);
    const auto kept = toVector(input, 0);
    FirFilter filter(makeNoiseSignal(1, 700, 11));
    const auto first = filter.process(slice(input, 0, 256));
    const auto before = toVector(first, 0);
    const auto multiple = filter.processMultiple(slice(input, 256, 256));
    const auto beforeMultiple = toVector(multiple.front(), 0);
    for (int i = 0; i < 4; ++i)
        filter.process(input);
    EXPECT_EQ(toVector(first, 0), before);
    EXPECT_EQ(toVector(multiple.front(), 0), beforeMultiple);
    EXPECT_EQ(toVector(input, 0), kept);
}

TEST(FirFilter, ANewResponseFindsTheWholePast)
{
    // One length for the head alone, one where partitions change, one where all partitions stay.
    struct Row
    {
        int before, after;
    };
    for (const auto& [before, after] : {Row{128, 128}, {128, 3000}, {300, 700}, {3000, 400}, {3000, 3000}})
        for (const int block : {100, 256, 1024})
        {
            SCOPED_TRACE(testing::Message() << before << " to " << after << " taps, blocks of " << block);
            const auto input = makeNoiseSignal(1, 10000, 20), response = makeNoiseSignal(1, after, 22);
            FirFilter filter(makeNoiseSignal(1, before, 21));
            int start = 5000 / block * block;
            run(filter, slice(input, 0, start), {block});
            // A response that is loaded while the head is an FFT leaves its inner partitions running until the
            // head changes; so it changes here.
            if (block != 100)
                filter.process(slice(input, start++, 1));
            filter.setImpulseResponse(response);
            const auto output =
                run(filter, slice(input, start, input.numSamples - start), {block == 100 ? 100 : 99});

            // Partitions that stay hand out what they had computed: no more than their offset.
            int queued = 0;
            for (const auto& partition : filter.partitions)
                queued = partition->offset < before ? partition->offset : queued;
            expectConvolution(output, input, response, queued);
        }
}

TEST(FirFilter, APartitionOfTheSameSizeElsewhereInTheResponseIsNotKept)
{
    const auto input = makeNoiseSignal(1, 8000, 28), response = makeNoiseSignal(1, 1400, 29);
    FirFilter filter;
    filter.setLoadDistribution(true, 1);
    filter.setImpulseResponse(makeNoiseSignal(1, 5000, 30));
    filter.setLoadDistribution(false, 1);
    ASSERT_EQ(filter.partitionSizes, (std::vector<int>{128, 256, 128, 512, 256, 1024, 512, 2048, 1024}))
        << "load distribution takes effect at the next response";
    run(filter, slice(input, 0, 4000), {100});

    filter.setImpulseResponse(response);
    ASSERT_EQ(filter.partitionSizes, (std::vector<int>{128, 256, 512, 512}));
    // The first two partitions stay, and hand out what they had computed of the old response.
    expectConvolution(run(filter, slice(input, 4000, 4000), {100}), input, response, 512);
}

TEST(FirFilter, PartitionsCreatedUnderAnFftHeadSoundTwiceUntilTheHeadChanges)
{
    const auto input = makeNoiseSignal(1, 8192, 23), response = makeNoiseSignal(1, 512, 24);
    FirFilter filter(makeNoiseSignal(1, 100, 25));
    filter.process(slice(input, 0, 256));
    filter.setImpulseResponse(response);
    const auto output = run(filter, slice(input, 256, 4096 - 256), {256});

    auto twice = response;
    for (int k = 128; k < 256; ++k)
        twice.getWriteChannelPtr(0)[k] *= 2.0f;
    expectConvolution(output, slice(input, 0, 4096), twice);
    expectConvolution(run(filter, slice(input, 4096, 4096), {100, 256, 256}), input, response);
}

} // namespace vesk::audio
