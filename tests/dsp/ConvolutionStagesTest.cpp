#include "dsp/FirFilter.h"
#include "tests/dsp/Measures.h"

namespace vesk::audio
{

using namespace test;

namespace
{
constexpr double tolerance = 3e-5;

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
        int offset, size;
        std::vector<int> blocks;
    };
    const auto input = makeNoiseSignal(2, 3072, 6), response = makeNoiseSignal(2, 600, 3);
    for (const auto& [offset, size, blocks] : {Row{256, 256, {100}},
                                               {128, 128, {64, 1, 300, 1000, 128}},
                                               {512, 256, {300, 31, 1000}},
                                               {0, 256, {256}}})
    {
        FirFilter::Partition partition(2, 1, offset, size);
        partition.setImpulseResponses({response});
        CircularBuffer<Signal32> ring;
        ring.capacity = 8192;
        int done = 0;
        const auto output =
            processInBlocks(input, blocks,
                            [&, offset = offset, size = size](const Signal32& block)
                            {
                                std::vector<Signal32> outputs(1, Signal32(2, block.numSamples));
                                ring.add(block);
                                partition.process(ring, outputs);
                                ring.readPosition = ring.writePosition;
                                done += block.numSamples;
                                EXPECT_EQ(partition.queues[0].numSamples, offset + done / size * size - done);
                                return outputs[0];
                            });
        for (int c = 0; c < 2; ++c)
        {
            auto taps = toVector(response, c);
            taps.resize(static_cast<std::size_t>(std::min(offset + size, 600)));
            std::fill_n(taps.begin(), offset, 0.0f);
            EXPECT_LT(maxDifference(getChannel(output, c), convolve(getChannel(input, c), taps)), tolerance)
                << "offset " << offset << ", blocks from " << blocks[0];
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
