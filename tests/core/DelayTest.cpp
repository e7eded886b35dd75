#include "core/Delay.h"
#include "tests/core/TestSignals.h"

#include <gtest/gtest.h>

#include <numbers>

namespace vesk::audio
{
namespace
{

using test::makeNoiseSignal;
using test::makeSignal;
using test::slice;
using test::toVectors;

Delay<float> makeDelay(int samples, int maximum)
{
    Delay<float> delay;
    delay.delaySamples = delay.currentDelaySamples = samples;
    delay.maxDelaySamples = maximum;
    return delay;
}

TEST(Delay, MovesTheSignalByWholeSamplesAtAnyBlockLength)
{
    const auto input = makeNoiseSignal(2, 600, 1);
    for (const int samples : {0, 1, 37, 100})
        for (const std::vector<int>& blocks : {std::vector<int>{600}, {1, 0, 199, 1, 1, 7, 250, 141}})
        {
            auto delay = makeDelay(samples, 100);
            Signal32 output(2, 0);
            test::forEachBlock(600, blocks,
                               [&](int begin, int length)
                               {
                                   const Signal32 block = delay.process(slice(input, begin, length));
                                   output = Signal32::concatenate(output, block);
                               });
            const Signal32 expected = Signal32::concatenate(Signal32(2, samples, 0.0f), input);
            EXPECT_EQ(toVectors(output), toVectors(slice(expected, 0, 600))) << samples;
        }
}

TEST(Delay, AChangeCrossfadesWithinOneBlock)
{
    constexpr int length = 64;
    const auto input = makeNoiseSignal(2, 3 * length, 2);
    auto delay = makeDelay(40, 50);
    delay.process(slice(input, 0, length));
    delay.delaySamples = 3;
    const auto fade = delay.process(slice(input, length, length));
    EXPECT_EQ(delay.currentDelaySamples, 3);
    for (int c = 0; c < 2; ++c)
        for (int n = 0; n < length; ++n)
        {
            const double gain = 0.5 - 0.5 * std::cos(std::numbers::pi * n / length);
            const auto* now = input.getChannelPtr(c) + length + n;
            EXPECT_NEAR(fade.getChannelPtr(c)[n], (1.0 - gain) * double(now[-40]) + gain * double(now[-3]),
                        1e-6);
        }
    const auto after = delay.process(slice(input, 2 * length, length));
    EXPECT_EQ(toVectors(after), toVectors(slice(input, 2 * length - 3, length)));
}

TEST(Delay, BlocksOfOneSampleWaitWithTheChange)
{
    auto delay = makeDelay(2, 8);
    delay.process(makeSignal({{1, 2, 3, 4, 5}}));
    delay.delaySamples = 0;
    EXPECT_EQ(delay.process(makeSignal({{6}})).getChannelPtr(0)[0], 4.0f) << "the fade's first value";
    EXPECT_EQ(delay.currentDelaySamples, 2);
    const auto fade = delay.process(makeSignal({{7, 8}})); // gains 1 and 1/2
    EXPECT_NEAR(fade.getChannelPtr(0)[0], 5.0f, 1e-5f);
    EXPECT_NEAR(fade.getChannelPtr(0)[1], 7.0f, 1e-5f);
    EXPECT_EQ(delay.currentDelaySamples, 0);
}

TEST(Delay, AnotherChannelCountOrARebuildDropsThePast)
{
    const auto stereo = makeSignal({{4, 5, 6}, {7, 8, 9}});
    const std::vector<std::vector<float>> fresh = {{0, 0, 4}, {0, 0, 7}};
    auto delay = makeDelay(2, 4);
    delay.process(makeSignal({{1, 2, 3}}));
    EXPECT_EQ(toVectors(delay.process(stereo)), fresh);
    delay.numChannels = 0;
    EXPECT_EQ(toVectors(delay.process(stereo)), fresh);
    EXPECT_EQ(delay.queue.numSamples, 4) << "the line's length, between blocks";
}

} // namespace
} // namespace vesk::audio
