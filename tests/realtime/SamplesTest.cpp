/** What samples go in and come out: nothing that a host hands over can stay in the feedback, and nothing that leaves is a
    number that processors are slow at. */
#include "product/AmbrelAudioProcessor.h"
#include "tests/core/TestSignals.h"
#include "tests/support/AudioMeasures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace
{
using Limits = std::numeric_limits<float>;
using vesk::audio::test::isFinite;

constexpr double rate = 48000.0;
constexpr int length = 256;

class Playing
{
public:
    Playing() { plugIn.prepareToPlay(rate, length); }

    /** @param samples  one block of both channels, one channel after the other */
    std::vector<float> play(std::vector<float> samples, bool bypassed = false)
    {
        float* channels[] = {samples.data(), samples.data() + length};
        juce::AudioBuffer<float> buffer(channels, 2, length);
        bypassed ? plugIn.processBlockBypassed(buffer, midi) : plugIn.processBlock(buffer, midi);
        return samples;
    }

private:
    AmbrelAudioProcessor plugIn;
    juce::MidiBuffer midi;
};

std::vector<float> makeNoise(unsigned seed)
{
    return vesk::audio::test::makeNoise(2 * length, seed, -0.5f, 0.5f);
}
} // namespace

TEST(Samples, BadOnesCountAsSilence)
{
    const float badOnes[] = {Limits::quiet_NaN(), Limits::signaling_NaN(), Limits::infinity(),
                             -Limits::infinity(), Limits::max(),           -1.0e30f};
    Playing disturbed;
    Playing undisturbed;
    for (unsigned block = 0; block < 200; ++block)
    {
        auto samples = block % 50 < 20 ? makeNoise(block) : std::vector<float>(2 * length, 0.0f);
        auto cleaned = samples;
        if (block % 7 == 0)
            for (std::size_t i = block % 5; i < samples.size(); i += 1 + block % 3)
            {
                samples[i] = badOnes[(i + block) % std::size(badOnes)];
                cleaned[i] = 0.0f;
            }
        const bool bypassed = block % 4 == 3;
        const auto output = disturbed.play(samples, bypassed);
        ASSERT_TRUE(isFinite(output)) << block;
        ASSERT_EQ(output, undisturbed.play(cleaned, bypassed)) << block;
    }
}

TEST(Samples, LoudestThatPassesStaysFinite)
{
    Playing stream;
    for (int block = 0; block < 600; ++block)
    {
        auto samples = makeNoise(1);
        for (auto& sample : samples)
            sample = block < 100 ? std::copysign(1.0e20f, sample) : 0.0f;
        ASSERT_TRUE(isFinite(stream.play(samples))) << block;
    }
}

TEST(Samples, TailsEndWithoutDenormals)
{
    Playing stream;
    for (unsigned block = 0; block < 20; ++block)
        stream.play(makeNoise(block));
    const std::vector<float> silence(2 * length, 0.0f);
    for (int block = 0; block < static_cast<int>(20 * rate) / length; ++block)
        for (const float sample : stream.play(silence))
            ASSERT_NE(std::fpclassify(sample), FP_SUBNORMAL) << block;
}
