#include "dsp/ModulationGenerator.h"

#include "core/SignalGenerator.h"
#include "core/VectorOps.h"
#include "core/kernels.h"

#include <cmath>

namespace vesk::audio
{

namespace
{
/** Of the random modulation, as a part of depth. */
constexpr double standardDeviation = 0.2;

/** Spreads a phase of 0 to 1 over all seeds. By way of 64 bits, so that a phase of 1 is defined too. */
unsigned int toSeed(float phase)
{
    constexpr float numSeeds = 4294967296.0f;
    return static_cast<unsigned int>(static_cast<std::int64_t>(phase * numSeeds));
}
} // namespace

void ModulationGenerator::setFormat(int channels, double rateOfSamples)
{
    numChannels = channels;
    sampleRate = rateOfSamples;
}

void ModulationGenerator::setModulation(ModulationType newType, float newOffset, float newRate,
                                        float newDepth, float newPhase, float correlation)
{
    type = newType;
    offset = newOffset;
    rate = newRate;
    depth = newDepth;
    phase = newPhase;

    const auto cutoff = static_cast<double>(rate);
    const auto scale = static_cast<float>(standardDeviation * std::sqrt(sampleRate / (2.0 * cutoff)));
    noise.initialize(numChannels, vo::Gaussian, scale, correlation, toSeed(phase));
    lowPass.setFilter(numChannels, IirCoefficients::createLowPass(cutoff, sampleRate));
}

Signal32 ModulationGenerator::generate(int samples)
{
    if (numChannels < 1 || samples < 1)
        return Signal32(numChannels, samples);

    const int channels = hasEqualChannels() ? 1 : numChannels;
    const Signal32 unlimited = generateUnlimited(channels, samples);
    Signal32 modulation(numChannels, samples);
    for (int channel = 0; channel < channels; ++channel)
    {
        auto* destination = modulation.getWriteChannelPtr(channel);
        check(ippsThreshold_LTValGTVal_32f(unlimited.getChannelPtr(channel), destination, samples, -depth,
                                           -depth, depth, depth));
    }
    for (int channel = channels; channel < numChannels; ++channel)
        vo::copy(modulation.getChannelPtr(0), modulation.getWriteChannelPtr(channel), samples);

    if (offset != 0.0f)
        modulation += Signal32(numChannels, samples, offset);
    return modulation;
}

Signal32 ModulationGenerator::generateUnlimited(int channels, int samples)
{
    if (type == Random)
        return generateFilteredNoise(channels, samples);
    if (type == Sinusoidal)
        return SignalGenerator<float>::generateTone(channels, samples, static_cast<float>(sampleRate), depth,
                                                    rate, phase);
    return Signal32(channels, samples, 0.0f);
}

Signal32 ModulationGenerator::generateFilteredNoise(int channels, int samples)
{
    Signal32 scaled = noise.generate(samples);
    scaled.numChannels = channels;
    scaled *= depth;

    // In double precision, because the cut-off lies far below the sample rate.
    Signal64 filtered = scaled.toSignal64();
    for (int channel = 0; channel < channels; ++channel)
    {
        auto* values = filtered.getWriteChannelPtr(channel);
        lowPass.processChannel(channel, values, values, samples);
    }
    return filtered.toSignal32();
}

} // namespace vesk::audio
