/**
    A stereo unit impulse: one sample of 1 at the very start, in both channels or in one, and silence behind
    it.
*/
#pragma once

#include "tools/render/Options.h"
#include "tools/render/SampleStream.h"

namespace ambrel::render
{

class ImpulseSource : public SampleSource
{
public:
    ImpulseSource(double sampleRate, std::int64_t numSamples, ImpulsePosition position);

    int getNumChannels() const override { return 2; }
    double getSampleRate() const override { return rate; }
    std::int64_t getNumSamples() const override { return length; }
    void read(juce::AudioBuffer<float>& block) override;

private:
    double rate;
    std::int64_t length;
    ImpulsePosition channels;
    bool atStart = true;
};

} // namespace ambrel::render
