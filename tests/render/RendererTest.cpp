#include "tests/plugin/TestPlugIn.h"
#include "tests/render/TestAudio.h"

#include "tools/render/ImpulseSource.h"
#include "tools/render/LevelMeter.h"
#include "tools/render/Renderer.h"

namespace ambrel::render::test
{
namespace
{
constexpr double rate = 48000.0;

/** Delays by a number of samples, repeats with a gain, and may declare the delay as latency. */
class EchoProcessor : public TestPlugIn
{
public:
    EchoProcessor(int delayInSamples, float feedbackGain, bool declaresLatency = false)
        : delay(delayInSamples), feedback(feedbackGain)
    {
        line.clear();
        setLatencySamples(declaresLatency ? delay : 0);
    }

    void prepareToPlay(double, int) override {}

    using TestPlugIn::processBlock;

    void processBlock(juce::AudioBuffer<float>& block, juce::MidiBuffer&) override
    {
        for (int i = 0; i < block.getNumSamples(); ++i, position = (position + 1) % delay)
            for (int channel = 0; channel < block.getNumChannels(); ++channel)
            {
                const float out = line.getSample(channel, position);
                line.setSample(channel, position, block.getSample(channel, i) + feedback * out);
                block.setSample(channel, i, out);
            }
    }

private:
    int delay;
    float feedback;
    int position = 0;
    juce::AudioBuffer<float> line{2, delay};
};

/** Keeps the left channel. */
class Recorder : public SampleSink
{
public:
    void write(const juce::AudioBuffer<float>& block, int start, int numSamples) override
    {
        samples.insert(samples.end(), block.getReadPointer(0, start),
                       block.getReadPointer(0, start) + numSamples);
    }

    std::vector<float> samples;
};

std::vector<float> render(juce::AudioProcessor& processor, std::int64_t inputLength, const TailRule& rule,
                          int blockSize)
{
    Progress progress(Progress::Style::silent);
    ImpulseSource source(rate, inputLength, ImpulsePosition::both);
    Recorder recorder;
    const RenderedAudio audio =
        Renderer(processor, blockSize, progress).render(source, recorder, rule, "test");

    EXPECT_EQ(audio.input.numSamples, inputLength);
    EXPECT_EQ(audio.output.numSamples, static_cast<std::int64_t>(recorder.samples.size()));
    return recorder.samples;
}
} // namespace

/** Echoes of 1, 1/2, 1/4 ... every 1000 samples fall below -90 dB of the first at the 15th halving, so the last
    audible one is the 14th, at sample 15000. */
TEST(Renderer, endsWithTheLastAudibleSample)
{
    struct Row
    {
        const char* what;
        int delay;
        float feedback;
        std::int64_t inputLength;
        double hold;
        std::size_t outputLength;
        float last;
    };
    const Row rows[] = {{"halvings", 1000, 0.5f, 10, 0.05, 15001, std::ldexp(1.0f, -14)},
                        {"nothing behind the input", 10, 0.0f, 5000, 0.05, 5000, 0.0f},
                        {"pauses within the hold time", 20000, 0.1f, 1, 0.5, 100001, 1e-4f},
                        {"an echo that comes too late", 70000, 0.1f, 1, 0.5, 1, 0.0f}};
    for (const Row& row : rows)
        for (const int blockSize : {1, 37, 1024, 40000})
        {
            EchoProcessor echo(row.delay, row.feedback);
            const auto output = render(echo, row.inputLength, {std::nullopt, row.hold, 100.0}, blockSize);
            ASSERT_EQ(output.size(), row.outputLength) << row.what << ", " << blockSize;
            EXPECT_FLOAT_EQ(output.back(), row.last) << row.what << ", " << blockSize;
        }
}

TEST(Renderer, aFixedTailHasItsLengthAndLatencyIsTakenOff)
{
    for (const double seconds : {0.0, 0.25})
        for (const int blockSize : {1, 512, 4096})
        {
            EchoProcessor late(700, 0.0f, true);
            const auto output = render(late, 1000, {seconds, 0.5, 2.0}, blockSize);
            ASSERT_EQ(output.size(), 1000u + static_cast<std::size_t>(seconds * rate)) << blockSize;
            EXPECT_EQ(output[0], 1.0f) << blockSize;
        }

    EchoProcessor endless(1, 1.0f);
    const auto output = render(endless, 1, {std::nullopt, 0.5, 2.0}, 512);
    EXPECT_GE(output.size(), 96001u);
    EXPECT_LE(output.size(), 96001u + 512u) << "a tail that never ends is cut";
}

/** ITU-R BS.1770: a sine of 997 Hz at full scale in one channel reads -3.01 LUFS, at every sample rate; gates. */
TEST(LoudnessMeter, followsTheRecommendation)
{
    for (const double sampleRate : {32000.0, 44100.0, 48000.0, 96000.0})
    {
        const int second = static_cast<int>(sampleRate);
        LoudnessMeter meter(sampleRate, 2);
        auto sine = createSine(2, 10 * second, 997.0, sampleRate, 1.0f);
        sine.clear(1, 0, sine.getNumSamples());
        meter.add(sine, 0, sine.getNumSamples());
        EXPECT_NEAR(meter.getIntegrated().value_or(0.0), -3.01, 0.02) << sampleRate;

        sine.applyGain(0.001f); // -60 dB: above the absolute gate, below the relative one
        meter.add(sine, 0, sine.getNumSamples());
        EXPECT_NEAR(meter.getIntegrated().value_or(0.0), -3.01, 0.1) << sampleRate;
    }

    const auto getLoudness = [](double frequency)
    {
        LoudnessMeter meter(rate, 1);
        meter.add(createSine(1, 48000, frequency, rate, 1.0f), 0, 48000);
        return meter.getIntegrated().value_or(0.0);
    };
    EXPECT_NEAR(getLoudness(4000.0) - getLoudness(60.0), 6.2, 1.0) << "the weighting's shelf and high-pass";
    EXPECT_FALSE(LoudnessMeter(rate, 1).getIntegrated().has_value());
}

} // namespace ambrel::render::test
