#include "tools/render/ImpulseSource.h"

namespace ambrel::render
{

ImpulseSource::ImpulseSource(double sampleRate, std::int64_t numSamples, ImpulsePosition position)
    : rate(sampleRate), length(numSamples), channels(position)
{
}

void ImpulseSource::read(juce::AudioBuffer<float>& block)
{
    block.clear();

    if (!atStart || block.getNumSamples() == 0)
        return;

    if (channels != ImpulsePosition::right)
        block.setSample(0, 0, 1.0f);
    if (channels != ImpulsePosition::left)
        block.setSample(1, 0, 1.0f);

    atStart = false;
}

} // namespace ambrel::render
