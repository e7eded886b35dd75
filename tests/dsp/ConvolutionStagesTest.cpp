#include "dsp/FirFilter.h"
#include "tests/dsp/Measures.h"

namespace vesk::audio
{

using namespace test;

namespace
{
constexpr double tolerance = 3e-5;

/** Taps begin to end of a response's channel, those before them silent. */
std::vector<float> keepTaps(const Signal32& response, int channel, int begin, int end)
{
    std::vector<float> taps(static_cast<std::size_t>(end));
    for (int k = begin; k < std::min(end, response.numSamples); ++k)
        taps[static_cast<std::size_t>(k)] = response.getChannelPtr(channel)[k];
    return taps;
}

/** What the head must give for a mono stream of a past and a block. */
std::vector<double> convolveWithPast(const Signal32& past, const Signal32& block, const Signal32& taps)
{
    const auto all = convolve(getChannel(Signal32::concatenate(past, block), 0), getChannel(taps, 0));
    return {all.begin() + past.numSamples, all.end()};
}
} // namespace

TEST(Partition, GivesItsSliceOfTheConvolutionFromFramesQueuedAsSoonAsTheyAreWhole)
{
    struct Row
    {
        int channels, offset, size;
        std::vector<int> blocks;
    };
    for (const auto& [channels, offset, size, blocks] : {Row{2, 256, 256, {100}},
                                                         {1, 128, 128, {64, 1, 300, 1000, 128}},
                                                         {3, 512, 256, {300, 31, 1000}},
                                                         {1, 0, 256, {256}}})
    {
        // Some responses end inside the slice, some before it.
        const std::vector<Signal32> responses = {makeNoiseSignal(channels, 600, 3),
                                                 makeNoiseSignal(channels, 300, 4),
                                                 makeNoiseSignal(channels, 90, 5)};
        const auto input = makeNoiseSignal(channels, 12 * 256, 6);
        const auto run = [&](const auto& process)
        {
            FirFilter::Partition partition(channels, 3, offset, size);
            partition.setImpulseResponses(responses);
            CircularBuffer<Signal32> ring;
            ring.capacity = 8192;
            int done = 0;
            return processInBlocks(input, blocks,
                                   [&](const Signal32& block)
                                   {
                                       ring.add(block);
                                       const Signal32 output = process(partition, ring, block.numSamples);
                                       ring.readPosition = ring.writePosition;
                                       done += block.numSamples;
                                       EXPECT_EQ(partition.queues[0].numSamples,
                                                 offset + done / size * size - done);
                                       return output;
                                   });
        };
        const Signal32 sums = run(
            [](auto& partition, auto& ring, int length)
            {
                Signal32 output(3, length);
                partition.processSummed(ring, output);
                return output;
            });
        for (std::size_t k = 0; k < 3; ++k)
        {
            SCOPED_TRACE(testing::Message()
                         << channels << " channels, offset " << offset << ", response " << k);
            const Signal32 separate = run(
                [&](auto& partition, auto& ring, int length)
                {
                    std::vector<Signal32> outputs(3, Signal32(channels, length));
                    partition.process(ring, outputs);
                    EXPECT_EQ(partition.queues[k].numSamples, partition.queues[0].numSamples);
                    return outputs[k];
                });
            std::vector<double> sum;
            for (int c = 0; c < channels; ++c)
            {
                const auto taps = keepTaps(responses[k], c, offset, offset + size);
                EXPECT_LT(maxDifference(getChannel(separate, c), convolve(getChannel(input, c), taps)),
                          tolerance);
                addConvolution(getChannel(input, c), taps, sum);
            }
            EXPECT_LT(maxDifference(getChannel(sums, static_cast<int>(k)), sum), tolerance);
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
            const auto output = filter.process(block)[0];
            EXPECT_LT(maxDifference(getChannel(output, 0), convolveWithPast(past, block, head)), tolerance)
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
        const auto output = filter.process(block).back();
        const auto expected = convolveWithPast(keepsPast ? past : Signal32(1, 0), block, head);
        EXPECT_LT(maxDifference(getChannel(output, 0), expected), tolerance)
            << taps << " taps, " << responses << " responses";
    }
}

} // namespace vesk::audio
