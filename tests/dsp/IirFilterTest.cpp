#include "dsp/IirFilter.h"

#include "tests/dsp/Measures.h"

#include <gtest/gtest.h>

#include <functional>

using namespace vesk::audio;
using namespace vesk::audio::test;

namespace
{
constexpr double sampleRate = 48000.0;

/** The analogue Butterworth low-pass of second order behind the bilinear transform. */
double getLowPassGain(double frequency, double cutoff)
{
    const auto warp = [](double f) { return std::tan(std::numbers::pi * f / sampleRate); };
    return 1.0 / std::sqrt(1.0 + std::pow(warp(frequency) / warp(cutoff), 4.0));
}

Signal32 process(IirFilter32& filter, const Signal32& input)
{
    Signal32 output(filter.numChannels, input.numSamples);
    filter.process(input, output);
    return output;
}
} // namespace

TEST(IirFilter, DesignsHaveTheirGains)
{
    const auto lowPass = IirCoefficients::createLowPass(1000.0, sampleRate);
    const auto shelf = IirCoefficients::createHighShelf(3000.0, 4.0, sampleRate);
    const auto cut = IirCoefficients::createHighShelf(3000.0, 0.09, sampleRate);
    const auto smoothing = IirCoefficients::createSmoothing(0.8);
    struct Row
    {
        const char* name;
        IirCoefficients coefficients;
        double frequency; ///< Hz
        double gain;
    };
    const Row rows[] = {
        {"low-pass at DC", lowPass, 0.0, 1.0},
        {"low-pass at its frequency", lowPass, 1000.0, std::sqrt(0.5)},
        {"low-pass far above", lowPass, 20000.0, getLowPassGain(20000.0, 1000.0)},
        {"shelf at DC", shelf, 0.0, 1.0},
        {"shelf at its frequency", shelf, 3000.0, 2.0},
        {"shelf at the top", shelf, 24000.0, 4.0},
        {"shelf cut at its frequency", cut, 3000.0, 0.3},
        {"shelf of gain 1", IirCoefficients::createHighShelf(3000.0, 1.0, sampleRate), 5000.0, 1.0},
        {"smoothing at DC", smoothing, 0.0, 1.0},
        {"smoothing at the top", smoothing, 24000.0, 0.2 / 1.8},
        {"smoothing by nothing", IirCoefficients::createSmoothing(0.0), 7000.0, 1.0},
        {"a0 of 2", {{1.0, 0.5}, {2.0, 0.0}}, 0.0, 0.75},
    };
    Signal32 impulse(1, 16384, 0.0f);
    impulse.getWriteChannelPtr(0)[0] = 1.0f;
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        IirFilter32 single;
        single.setFilter(1, row.coefficients);
        IirFilter64 precise;
        precise.setFilter(1, row.coefficients);
        for (const Signal32& response :
             {process(single, impulse), precise.process(impulse.toSignal64()).toSignal32()})
            EXPECT_NEAR(std::abs(spectrumAt(getChannel(response, 0), row.frequency / sampleRate)), row.gain,
                        2e-5);
    }
}

TEST(IirFilter, RunsChannelsApartInPlaceAndInAnyBlocks)
{
    const Signal32 input = makeNoiseSignal(2, 3000, 5);
    const auto coefficients = IirCoefficients::createLowPass(500.0, sampleRate);
    IirFilter32 filter;
    filter.setFilter(2, coefficients);
    const auto inPlace = [&](Signal32 block)
    {
        const Signal32 kept = block;
        filter.process(block, block);
        EXPECT_NE(kept.getChannelPtr(1), block.getChannelPtr(1)) << "another owner's samples were written";
        return block;
    };
    const Signal32 output = processInCuts(input, inPlace);
    for (int c = 0; c < 2; ++c)
    {
        IirFilter32 alone;
        alone.setFilter(1, coefficients);
        const Signal32 expected = process(alone, makeSignal({toVector(input, c)}));
        EXPECT_LT(maxDifference(getChannel(output, c), getChannel(expected, 0)), 1e-5);
    }
}

TEST(IirFilter, NewCoefficientsOfTheSameShapeKeepTheTailAndOthersDropIt)
{
    const auto fast = IirCoefficients::createSmoothing(0.5);
    struct Row
    {
        const char* name;
        std::function<void(IirFilter32&)> change;
        bool keeps;
    };
    const Row rows[] = {
        {"same shape", [&](auto& filter) { filter.setFilter(2, fast); }, true},
        {"order", [](auto& filter) { filter.setFilter(2, IirCoefficients::createLowPass(1e3, sampleRate)); },
         false},
        {"channel count", [&](auto& filter) { filter.setFilter(3, fast), filter.setFilter(2, fast); }, false},
        {"reset", [](auto& filter) { filter.reset(); }, false},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        IirFilter32 filter;
        filter.setFilter(2, IirCoefficients::createSmoothing(0.9));
        process(filter, Signal32(2, 1, 1.0f));
        row.change(filter);

        // What the past adds to the next output stands; from there on the new decay counts.
        const Signal32 tail = process(filter, Signal32(2, 4, 0.0f));
        for (int c = 0; c < 2; ++c)
            for (int n = 0; n < 4; ++n)
                EXPECT_NEAR(tail.getChannelPtr(c)[n], row.keeps ? 0.1 * 0.9 * std::pow(0.5, n) : 0.0, 1e-7);
    }
}
