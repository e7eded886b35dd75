#include "tools/render/Renderer.h"

#include "tools/render/Errors.h"
#include "tools/render/Interruption.h"
#include "tools/render/Tail.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>

namespace ambrel::render
{

namespace
{

/** Measures what it passes on. */
class MeteredSink : public SampleSink
{
public:
    MeteredSink(SampleSink& next, double sampleRate, int numChannels)
        : meter(sampleRate, numChannels), sink(next)
    {
    }

    void write(const juce::AudioBuffer<float>& block, int start, int numSamples) override
    {
        meter.add(block, start, numSamples);
        sink.write(block, start, numSamples);
    }

    LevelMeter meter;

private:
    SampleSink& sink;
};

/** Drops the first samples, which are the processor's latency. */
class LatencyRemover : public SampleSink
{
public:
    LatencyRemover(SampleSink& next, int latency) : sink(next), remaining(latency) {}

    void write(const juce::AudioBuffer<float>& block, int start, int numSamples) override
    {
        const int dropped = std::min(remaining, numSamples);
        remaining -= dropped;
        sink.write(block, start + dropped, numSamples - dropped);
    }

private:
    SampleSink& sink;
    int remaining;
};

/** The body of an output, as long as the input, and behind it the tail. */
class BodyAndTail : public SampleSink
{
public:
    BodyAndTail(MeteredSink& next, std::int64_t bodyLength, int numChannels, double sampleRate,
                const TailRule& rule)
        : sink(next), bodyRemaining(bodyLength), channels(numChannels), rate(sampleRate), tailRule(rule)
    {
    }

    void write(const juce::AudioBuffer<float>& block, int start, int numSamples) override
    {
        const auto body = static_cast<int>(std::min<std::int64_t>(numSamples, bodyRemaining));

        if (body > 0)
            sink.write(block, start, body);

        bodyRemaining -= body;

        if (bodyRemaining > 0)
            return;
        if (tail == nullptr)
            tail = createTail();
        if (numSamples > body && !tail->isOver())
            tail->write(block, start + body, numSamples - body);
    }

    bool isOver() const { return tail != nullptr && tail->isOver(); }

private:
    std::unique_ptr<Tail> createTail() const
    {
        if (tailRule.fixed)
            return std::make_unique<FixedTail>(sink, std::llround(*tailRule.fixed * rate));

        const TrimmedTail::Limits limits{static_cast<int>(std::lround(tailRule.hold * rate)),
                                         std::llround(tailRule.longest * rate)};
        return std::make_unique<TrimmedTail>(sink, channels, limits, sink.meter.getPeak());
    }

    MeteredSink& sink;
    std::int64_t bodyRemaining;
    int channels;
    double rate;
    TailRule tailRule;
    std::unique_ptr<Tail> tail;
};

juce::AudioProcessor::BusesLayout layoutFor(const SampleSource& source)
{
    const auto channelSet = juce::AudioChannelSet::canonicalChannelSet(source.getNumChannels());

    juce::AudioProcessor::BusesLayout layout;
    layout.inputBuses.add(channelSet);
    layout.outputBuses.add(channelSet);
    return layout;
}

} // namespace

Renderer::Renderer(juce::AudioProcessor& processorToRun, int samplesInBlock, Progress& progressToTell)
    : processor(processorToRun), blockSize(samplesInBlock), progress(progressToTell)
{
}

void Renderer::checkChannels(const SampleSource& source, const std::string& title) const
{
    if (!processor.checkBusesLayoutSupported(layoutFor(source)))
        throw RenderError("'" + title + "' has " + std::to_string(source.getNumChannels()) +
                          " channels; the reverb takes mono and stereo");
}

void Renderer::prepare(const SampleSource& source)
{
    processor.setBusesLayout(layoutFor(source));
    processor.setNonRealtime(true);
    processor.setRateAndBufferSizeDetails(source.getSampleRate(), blockSize);
    processor.prepareToPlay(source.getSampleRate(), blockSize);
}

RenderedAudio Renderer::render(SampleSource& source, SampleSink& sink, const TailRule& tailRule,
                               const std::string& title)
{
    const auto startTime = std::chrono::steady_clock::now();
    const int channels = source.getNumChannels();
    const double rate = source.getSampleRate();
    const std::int64_t length = source.getNumSamples();
    const double expectedTail = tailRule.fixed.value_or(tailRule.longest / 2.0);

    checkChannels(source, title);
    prepare(source);
    progress.start(title, length + std::llround(expectedTail * rate));

    LevelMeter inputMeter(rate, channels);
    MeteredSink metered(sink, rate, channels);
    BodyAndTail output(metered, length, channels, rate, tailRule);
    LatencyRemover aligned(output, processor.getLatencySamples());

    juce::AudioBuffer<float> block(channels, blockSize);
    juce::MidiBuffer midi;

    for (std::int64_t position = 0; !output.isOver(); position += blockSize)
    {
        Interruption::throwIfRequested();
        source.read(block);
        inputMeter.add(block, 0, static_cast<int>(std::clamp<std::int64_t>(length - position, 0, blockSize)));
        processor.processBlock(block, midi);
        aligned.write(block, 0, blockSize);
        progress.advanceTo(position + blockSize);
    }

    progress.finish();
    processor.releaseResources();

    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - startTime;
    return {inputMeter.getLevels(), metered.meter.getLevels(), elapsed.count()};
}

} // namespace ambrel::render
