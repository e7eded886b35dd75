#include "dsp/NoiseGenerator.h"

#include "core/kernels.h"

#include <cmath>
#include <cstdlib>

namespace vesk::audio
{

NoiseGenerator::NoiseGenerator()
    : NoiseGenerator(1, vo::Gaussian, 1.0f, 0.0f, static_cast<unsigned>(std::rand()))
{
}

NoiseGenerator::NoiseGenerator(int channels, vo::RandomDistribution distribution, float scale,
                               float channelCorrelation, unsigned int seed)
{
    initialize(channels, distribution, scale, channelCorrelation, seed);
}

NoiseGenerator::~NoiseGenerator() { freeStates(); }

void NoiseGenerator::freeStates()
{
    for (auto& state : states)
        ippsFree(state.generator);
    states.clear();
}

void NoiseGenerator::initialize(int channels, vo::RandomDistribution distribution, float scale,
                                float channelCorrelation, unsigned int seed)
{
    freeStates();
    numChannels = channels;
    correlation = channelCorrelation;
    states.resize(static_cast<std::size_t>(channels));
    for (auto& state : states)
        state = vo::initializeRandomGenerator(distribution, scale, seed);
}

Signal32 NoiseGenerator::generate(int samples)
{
    if (numChannels < 1)
        return {};

    Signal32 first(1, samples);
    generateFirstChannel(first.getWriteChannelPtr(0), samples);
    if (numChannels == 1)
        return first;

    // The further channels' own noise is that of the first, so one sum serves them all.
    Signal32 further = first;
    if (!hasEqualChannels())
        further = std::sqrt(1.0f - correlation) * first + std::sqrt(correlation) * first;

    Signal32 noise(numChannels, samples);
    for (int channel = 0; channel < numChannels; ++channel)
        vo::copy((channel == 0 ? first : further).getChannelPtr(0), noise.getWriteChannelPtr(channel),
                 samples);
    return noise;
}

} // namespace vesk::audio
