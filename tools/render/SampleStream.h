/**
    The two ends of a render: where blocks come from and where they go.

    A source is read once, from its first sample on, in blocks of any length; behind its end it delivers
    silence, so that the last block needs no special case. A sink takes what it is given.

    Thread: one.
*/
#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <cstdint>
#include <vector>

namespace ambrel::render
{

class SampleSource
{
public:
    virtual ~SampleSource() = default;

    virtual int getNumChannels() const = 0;
    virtual double getSampleRate() const = 0;
    virtual std::int64_t getNumSamples() const = 0;

    /** Fills the whole block with the next samples.
        @throws RenderError if the samples cannot be had */
    virtual void read(juce::AudioBuffer<float>& block) = 0;
};

class SampleSink
{
public:
    virtual ~SampleSink() = default;

    /** Takes numSamples samples of all channels, from start on.
        @throws RenderError if they cannot be stored */
    virtual void write(const juce::AudioBuffer<float>& block, int start, int numSamples) = 0;
};

/** Hands everything to several sinks. */
class SinkList : public SampleSink
{
public:
    void add(SampleSink& sink) { sinks.push_back(&sink); }

    void write(const juce::AudioBuffer<float>& block, int start, int numSamples) override
    {
        for (SampleSink* sink : sinks)
            sink->write(block, start, numSamples);
    }

private:
    std::vector<SampleSink*> sinks; ///< not owned
};

} // namespace ambrel::render
