#include "dsp/ModulationGenerator.h"

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
    Signal32 modulation(numChannels, samples);
    if (numChannels < 1 || samples < 1)
        return modulation;

    if (hasEqualChannels())
    {
        generateShared(modulation.getWriteChannelPtr(0), samples);
        for (int channel = 1; channel < numChannels; ++channel)
            vo::copy(modulation.getChannelPtr(0), modulation.getWriteChannelPtr(channel), samples);
        return modulation;
    }

    modulation = noise.generate(samples);
    for (int channel = 0; channel < numChannels; ++channel)
    {
        auto* values = modulation.getWriteChannelPtr(channel);
        filterNoise(channel, values, samples);
        finish(values, samples);
    }
    return modulation;
}

void ModulationGenerator::generateShared(float* destination, int samples)
{
    if (type == Random)
    {
        noise.generateFirstChannel(destination, samples);
        filterNoise(0, destination, samples);
    }
    else if (type == Sinusoidal)
    {
        const auto frequency = rate / static_cast<float>(sampleRate);
        vo::generateSinusoidal(depth, frequency, phase, destination, samples);
    }
    else
        check(ippsZero_32f(destination, samples));
    finish(destination, samples);
}

/** Scales and filters in place, in double precision, because the cut-off lies far below the sample rate. */
void ModulationGenerator::filterNoise(int channel, float* values, int samples)
{
    if (preciseNoise.size() < static_cast<std::size_t>(samples))
        preciseNoise.resize(static_cast<std::size_t>(samples));
    auto* precise = preciseNoise.data();
    check(ippsMulC_32f(values, depth, values, samples));
    check(ippsConvert_32f64f(values, precise, samples));
    lowPass.processChannel(channel, precise, precise, samples);
    check(ippsConvert_64f32f(precise, values, samples));
}

/** Holds the values within the depth and shifts them to the offset. */
void ModulationGenerator::finish(float* values, int samples) const
{
    check(ippsThreshold_LTValGTVal_32f(values, values, samples, -depth, -depth, depth, depth));
    if (offset != 0.0f)
        for (int i = 0; i < samples; ++i)
            values[i] += offset;
}

} // namespace vesk::audio
