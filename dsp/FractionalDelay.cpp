#include "dsp/FractionalDelay.h"

#include "core/VectorOps.h"
#include "core/kernels.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vesk::audio
{

void FractionalDelay::setFormat(int channels, double rateOfSamples)
{
    numChannels = channels;
    sampleRate = rateOfSamples;
    modulation.setFormat(channels, rateOfSamples);
    queue.clear();
    updateSincFilter();
}

/** A sinc that crosses zero at every second tap from its centre, under a Hann window without its zero
    ends. Its sum of about 2 makes up for the zeros between the samples. */
void FractionalDelay::updateSincFilter()
{
    Signal32 kernel(numChannels, sincLength);
    for (int i = 0; i < sincLength; ++i)
    {
        const int distance = sincLength / 2 - i;
        const float periods = static_cast<float>(distance) * (1.0f / static_cast<float>(oversampling));
        const auto angle = static_cast<float>(static_cast<double>(periods) * std::numbers::pi);
        const double hann = 0.5 - 0.5 * std::cos(2.0 * (i + 1) * std::numbers::pi / (sincLength + 1));
        const double tap =
            distance == 0 ? 1.0 : static_cast<double>(std::sin(angle)) * hann / static_cast<double>(angle);
        for (int channel = 0; channel < numChannels; ++channel)
            kernel.getWriteChannelPtr(channel)[i] = static_cast<float>(tap);
    }
    interpolator.setImpulseResponse(kernel);
}

float FractionalDelay::setDelay(float baseDelay, ModulationGenerator::ModulationType type, float depth,
                                float rate, float seedFraction, float correlation)
{
    delay = std::max(baseDelay, depth);
    modulationType = type;
    modulationDepth = depth;
    modulationRate = rate;
    modulationCorrelation = correlation;

    const double oversampledRate = oversampling * sampleRate;
    const float longest = 2.0f * depth + delay;
    delaySamples = std::max(sincLength, static_cast<int>(static_cast<double>(longest) * oversampledRate));

    if (type != ModulationGenerator::None)
    {
        modulation.setModulation(type, 0.0f, rate, depth, seedFraction, correlation);
    }
    else
    {
        lowerWeight = delay * static_cast<float>(oversampledRate) - static_cast<float>(delaySamples);
        upperWeight = 1.0f - lowerWeight;
    }

    const auto surplus = static_cast<int>(queue.numSamples - delaySamples);
    if (surplus < 0)
        queue.add(Signal32(numChannels, -surplus, 0.0f));
    else
        queue.skip(surplus);
    return delay;
}

void FractionalDelay::reset()
{
    if (numChannels > 0 && sampleRate > 0.0)
    {
        queue.clear();
        if (delaySamples > 0)
            queue.add(Signal32(numChannels, delaySamples, 0.0f));
    }
    interpolator.reset();
}

Signal32 FractionalDelay::process(const Signal32& input)
{
    const int samples = input.numSamples;
    if (samples < 1)
        return Signal32(numChannels, samples);

    queue.add(upsample(input));
    window.ensureDimensions(numChannels, oversampling * samples + delaySamples);
    queue.peek(window);
    queue.skip(oversampling * samples);
    return modulationType != ModulationGenerator::None ? readModulated(window, samples)
                                                       : readDecimated(window, samples);
}

Signal32 FractionalDelay::upsample(const Signal32& input)
{
    Signal32 spaced(numChannels, oversampling * input.numSamples);
    int length = 0;
    int phase = 0;
    for (int channel = 0; channel < numChannels; ++channel)
        check(ippsSampleUp_32f(input.getChannelPtr(channel), input.numSamples,
                               spaced.getWriteChannelPtr(channel), &length, oversampling, &phase));
    return interpolator.process(spaced);
}

Signal32 FractionalDelay::readModulated(const Signal32& line, int samples)
{
    const Signal32 offsets = modulation.generate(samples);
    Signal32 output(numChannels, samples);
    for (int channel = 0; channel < numChannels; ++channel)
    {
        if (channel == 0 || !modulation.hasEqualChannels())
            updateReadPositions(offsets.getChannelPtr(channel), samples, line.numSamples);

        const auto* source = line.getChannelPtr(channel);
        auto* destination = output.getWriteChannelPtr(channel);
        for (std::size_t n = 0; n < readIndices.size(); ++n)
        {
            const auto* lower = source + readIndices[n];
            destination[n] = readFractions[n] * lower[1] + (1.0f - readFractions[n]) * lower[0];
        }
    }
    return output;
}

void FractionalDelay::updateReadPositions(const float* offsets, int samples, int lineLength)
{
    const auto rate = static_cast<float>(sampleRate);
    const auto factor = static_cast<float>(oversampling);
    const int last = lineLength - 1;
    const auto end = static_cast<float>(last);

    readIndices.resize(static_cast<std::size_t>(samples));
    readFractions.resize(static_cast<std::size_t>(samples));
    auto* indices = readIndices.data();
    auto* fractions = readFractions.data();
    for (int n = 0; n < samples; ++n)
    {
        // The line is long enough for every modulation; the limits stand for the rounding of its last
        // position, and for a modulation that is not a number.
        const float position = ((delay + offsets[n]) * rate + static_cast<float>(n)) * factor;
        const float inside = position > 0.0f ? std::min(position, end) : 0.0f;
        const int index = std::min(static_cast<int>(inside), last - 1);
        indices[n] = index;
        fractions[n] = inside - static_cast<float>(index);
    }
}

Signal32 FractionalDelay::readDecimated(const Signal32& line, int samples) const
{
    // The decimator is handed the block's length of a line that is oversampled, so it fills half of each
    // block; the rest is silence.
    Signal32 lower(numChannels, samples, 0.0f);
    Signal32 upper(numChannels, samples, 0.0f);
    int length = 0;
    int lowerPhase = 0;
    int upperPhase = 1;
    for (int channel = 0; channel < numChannels; ++channel)
    {
        const auto* source = line.getChannelPtr(channel);
        check(ippsSampleDown_32f(source, samples, lower.getWriteChannelPtr(channel), &length, oversampling,
                                 &lowerPhase));
        check(ippsSampleDown_32f(source, samples, upper.getWriteChannelPtr(channel), &length, oversampling,
                                 &upperPhase));
    }
    return lowerWeight * lower + upperWeight * upper;
}

} // namespace vesk::audio
