#include "dsp/IirFilter.h"

#include "tests/dsp/Measures.h"

#include <gtest/gtest.h>

using namespace vesk::audio;
using namespace vesk::audio::test;

namespace
{
constexpr double sampleRate = 48000.0;
constexpr int responseLength = 16384;

struct GainRow
{
    const char* name;
    IirCoefficients coefficients;
    double frequency; ///< Hz
    double gain;
};

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
    const auto flat = IirCoefficients::createHighShelf(3000.0, 1.0, sampleRate);
    const auto smoothing = IirCoefficients::createSmoothing(0.8);
    const GainRow rows[] = {
        {"low-pass at DC", lowPass, 0.0, 1.0},
        {"low-pass at its frequency", lowPass, 1000.0, std::sqrt(0.5)},
        {"low-pass above", lowPass, 6000.0, getLowPassGain(6000.0, 1000.0)},
        {"low-pass far above", lowPass, 20000.0, getLowPassGain(20000.0, 1000.0)},
        {"shelf at DC", shelf, 0.0, 1.0},
        {"shelf at its frequency", shelf, 3000.0, 2.0},
        {"shelf at the top", shelf, 24000.0, 4.0},
        {"shelf cut at its frequency", cut, 3000.0, 0.3},
        {"shelf cut at the top", cut, 24000.0, 0.09},
        {"shelf of gain 1", flat, 5000.0, 1.0},
        {"smoothing at DC", smoothing, 0.0, 1.0},
        {"smoothing at the top", smoothing, 24000.0, 0.2 / 1.8},
        {"smoothing by nothing", IirCoefficients::createSmoothing(0.0), 7000.0, 1.0},
        {"a0 of 2", {{1.0, 0.5}, {2.0, 0.0}}, 0.0, 0.75},
    };
    const Signal32 impulse = makeImpulse(1, responseLength);
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        IirFilter32 single;
        single.setFilter(1, row.coefficients);
        const Signal32 response = process(single, impulse);
        EXPECT_NEAR(std::abs(spectrumAt(getChannel(response, 0), row.frequency / sampleRate)), row.gain,
                    2e-5);

        IirFilter64 precise;
        precise.setFilter(1, row.coefficients);
        const Signal32 preciseResponse = precise.process(impulse.toSignal64()).toSignal32();
        EXPECT_NEAR(std::abs(spectrumAt(getChannel(preciseResponse, 0), row.frequency / sampleRate)),
                    row.gain, 1e-6);
    }
}

TEST(IirFilter, RunsChannelsApartInPlaceAndInAnyBlocks)
{
    constexpr int length = 3000;
    const Signal32 input = makeNoiseSignal(2, length, 5);
    const auto coefficients = IirCoefficients::createLowPass(500.0, sampleRate);
    IirFilter32 whole;
    whole.setFilter(2, coefficients);
    const Signal32 expected = process(whole, input);

    IirFilter32 inCuts;
    inCuts.setFilter(2, coefficients);
    const Signal32 output = processInCuts(input,
                                          [&](Signal32 block)
                                          {
                                              const Signal32 shared = block;
                                              inCuts.process(block, block);
                                              EXPECT_NE(shared.getChannelPtr(1), block.getChannelPtr(1));
                                              return block;
                                          });
    for (int c = 0; c < 2; ++c)
    {
        EXPECT_LT(maxDifference(getChannel(output, c), getChannel(expected, c)), 1e-5);

        // Each channel has a past of its own.
        IirFilter32 alone;
        alone.setFilter(1, coefficients);
        EXPECT_EQ(toVector(process(alone, makeSignal({toVector(input, c)})), 0), toVector(expected, c));
    }
}

TEST(IirFilter, NewCoefficientsOfTheSameShapeKeepTheTailAndOthersDropIt)
{
    const Signal32 silence(2, 4, 0.0f);
    const auto slow = IirCoefficients::createSmoothing(0.9);
    const auto fast = IirCoefficients::createSmoothing(0.5);
    const auto otherOrder = IirCoefficients::createLowPass(1000.0, sampleRate);
    struct Row
    {
        const char* name;
        void (*change)(IirFilter32& filter, const IirCoefficients& fast, const IirCoefficients& otherOrder);
        bool keeps;
    };
    const Row rows[] = {
        {"same shape", [](auto& filter, auto& next, auto&) { filter.setFilter(2, next); }, true},
        {"other order", [](auto& filter, auto&, auto& other) { filter.setFilter(2, other); }, false},
        {"other channel count",
         [](auto& filter, auto& next, auto&)
         {
             filter.setFilter(3, next);
             filter.setFilter(2, next);
         },
         false},
        {"reset", [](auto& filter, auto&, auto&) { filter.reset(); }, false},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        IirFilter32 filter;
        filter.setFilter(2, slow);
        process(filter, makeImpulse(2, 11));
        row.change(filter, fast, otherOrder);
        const Signal32 tail = process(filter, silence);

        // What the past adds to the next output stands; from there on the new decay counts.
        const double start = row.keeps ? 0.1 * std::pow(0.9, 11.0) : 0.0;
        for (int c = 0; c < 2; ++c)
            for (int n = 0; n < 4; ++n)
                EXPECT_NEAR(tail.getChannelPtr(c)[n], start * std::pow(0.5, n), 1e-7);
    }
}
