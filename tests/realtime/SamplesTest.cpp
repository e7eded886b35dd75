/** What samples go in and come out: nothing that a host hands over can stay in the feedback, and nothing that leaves is a
    number that processors are slow at. */
#include "product/AmbrelAudioProcessor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace
{
using Limits = std::numeric_limits<float>;

constexpr double rate = 48000.0;
constexpr int length = 256;

class Playing
{
public:
    Playing() { plugIn.prepareToPlay(rate, length); }

    /** @param samples  of both channels */
    const juce::AudioBuffer<float>& play(const std::vector<float>& samples, bool bypassed = false)
    {
        for (int channel = 0; channel < buffer.getNumChannels(); ++channel)
            buffer.copyFrom(channel, 0, samples.data() + channel * length, length);
        bypassed ? plugIn.processBlockBypassed(buffer, midi) : plugIn.processBlock(buffer, midi);
        return buffer;
    }

private:
    AmbrelAudioProcessor plugIn;
    juce::AudioBuffer<float> buffer{2, length};
    juce::MidiBuffer midi;
};

std::vector<float> makeNoise(unsigned seed)
{
    std::mt19937 generator(seed);
    std::vector<float> noise(2 * length);
    for (auto& sample : noise)
        sample = static_cast<float>(generator()) * 0x1p-32f - 0.5f;
    return noise;
}

void expectEqual(const juce::AudioBuffer<float>& a, const juce::AudioBuffer<float>& b)
{
    for (int channel = 0; channel < 2; ++channel)
        for (int i = 0; i < length; ++i)
        {
            ASSERT_TRUE(std::isfinite(a.getSample(channel, i))) << channel << ' ' << i;
            ASSERT_EQ(a.getSample(channel, i), b.getSample(channel, i)) << channel << ' ' << i;
        }
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
        SCOPED_TRACE(block);
        expectEqual(disturbed.play(samples, bypassed), undisturbed.play(cleaned, bypassed));
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
        const auto& output = stream.play(samples);
        for (int channel = 0; channel < 2; ++channel)
            for (int i = 0; i < length; ++i)
                ASSERT_TRUE(std::isfinite(output.getSample(channel, i))) << block;
    }
}

TEST(Samples, TailsEndWithoutDenormals)
{
    Playing stream;
    for (unsigned block = 0; block < 20; ++block)
        stream.play(makeNoise(block));
    const std::vector<float> silence(2 * length, 0.0f);
    for (int block = 0; block < static_cast<int>(20 * rate) / length; ++block)
    {
        const auto& output = stream.play(silence);
        for (int channel = 0; channel < 2; ++channel)
            for (int i = 0; i < length; ++i)
                ASSERT_NE(std::fpclassify(output.getSample(channel, i)), FP_SUBNORMAL) << block;
    }
}
