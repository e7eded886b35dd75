#include "tools/render/Tail.h"

#include <algorithm>
#include <cmath>

namespace ambrel::render
{

namespace
{

constexpr float absoluteThreshold = 1e-5f;      // -100 dBFS
constexpr float relativeThreshold = 3.1623e-5f; // -90 dB

} // namespace

FixedTail::FixedTail(SampleSink& next, std::int64_t numSamples) : sink(next), remaining(numSamples) {}

void FixedTail::write(const juce::AudioBuffer<float>& block, int start, int numSamples)
{
    const auto taken = static_cast<int>(std::min<std::int64_t>(numSamples, remaining));
    sink.write(block, start, taken);
    remaining -= taken;
}

TrimmedTail::TrimmedTail(SampleSink& next, int numChannels, Limits limitsToUse, float highestPeak)
    : sink(next), limits(limitsToUse), peak(highestPeak), pending(numChannels, limitsToUse.hold)
{
}

void TrimmedTail::write(const juce::AudioBuffer<float>& block, int start, int numSamples)
{
    int audible = 0; // samples of the block up to and including the last audible one

    for (int i = 0; i < numSamples; ++i)
        if (isAudible(block, start + i))
            audible = i + 1;

    if (audible > 0)
    {
        sink.write(pending, 0, pendingLength);
        sink.write(block, start, audible);
        pendingLength = 0;
    }
    holdBack(block, start + audible, numSamples - audible);
    received += numSamples;
}

bool TrimmedTail::isAudible(const juce::AudioBuffer<float>& block, int index)
{
    float magnitude = 0.0f;

    for (int channel = 0; channel < pending.getNumChannels(); ++channel)
        magnitude = std::max(magnitude, std::abs(block.getSample(channel, index)));

    peak = std::max(peak, magnitude);
    return magnitude > std::max(absoluteThreshold, relativeThreshold * peak);
}

void TrimmedTail::holdBack(const juce::AudioBuffer<float>& block, int start, int numSamples)
{
    const int newLength = pendingLength + numSamples;

    if (newLength > pending.getNumSamples())
        pending.setSize(pending.getNumChannels(), newLength, true);

    for (int channel = 0; channel < pending.getNumChannels(); ++channel)
        pending.copyFrom(channel, pendingLength, block, channel, start, numSamples);

    pendingLength = newLength;
}

} // namespace ambrel::render
