/**
    The part of an output behind the end of its input, and when it is over.

    The renderer goes on to feed silence and hands what comes out to a tail, which passes on what belongs to
    the output. A fixed tail passes a given length. A trimmed tail finds the end by itself: what is audible
    goes on to the next sink; a quiet stretch is held back until something audible follows it, and when it has
    become longer than the hold time the tail is over and the stretch is dropped. So the output ends with the
    last audible sample, and a pause before the first echo (a pre-delay) does not end it.

    Audible is what lies above -100 dBFS and above -90 dB relative to the highest peak so far: quieter than
    the noise of 16-bit audio, and hidden behind what came before.

    Cost: one comparison for each sample, and the memory of a hold time.
*/
#pragma once

#include "tools/render/SampleStream.h"

namespace ambrel::render
{

class Tail : public SampleSink
{
public:
    virtual bool isOver() const = 0;
};

class FixedTail : public Tail
{
public:
    FixedTail(SampleSink& next, std::int64_t numSamples);

    void write(const juce::AudioBuffer<float>& block, int start, int numSamples) override;
    bool isOver() const override { return remaining <= 0; }

private:
    SampleSink& sink;
    std::int64_t remaining;
};

class TrimmedTail : public Tail
{
public:
    struct Limits
    {
        int hold = 0;             ///< the longest quiet stretch within a tail, samples
        std::int64_t longest = 0; ///< a tail that does not fall silent is cut after this, samples
    };

    /** @param peak  the highest magnitude of the output so far, linear */
    TrimmedTail(SampleSink& next, int numChannels, Limits limits, float peak);

    void write(const juce::AudioBuffer<float>& block, int start, int numSamples) override;
    bool isOver() const override { return pendingLength >= limits.hold || received >= limits.longest; }

private:
    bool isAudible(const juce::AudioBuffer<float>& block, int index);
    void holdBack(const juce::AudioBuffer<float>& block, int start, int numSamples);

    SampleSink& sink;
    Limits limits;
    float peak;
    std::int64_t received = 0;
    juce::AudioBuffer<float> pending; ///< grows to what is needed
    int pendingLength = 0;
};

} // namespace ambrel::render
