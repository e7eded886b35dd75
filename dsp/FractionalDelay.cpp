#include "dsp/FractionalDelay.h"

#include "core/VectorOps.h"
#include "core/kernels.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vesk::audio
{

namespace
{
/** Inputs before a block that the interpolator still needs. */
constexpr std::size_t pastLength = halfBandTaps - 1;
} // namespace

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

    static_assert(halfBandTaps == 8, "every second tap of 15, from the first on");
    for (std::size_t k = 0; k < halfBand.size(); ++k)
        halfBand[k] = numChannels > 0 ? kernel.getChannelPtr(0)[2 * k] : 0.0f;
    // As filters do, the past stays if it still fits.
    const std::size_t pastTotal = static_cast<std::size_t>(std::max(numChannels, 0)) * pastLength;
    if (past.size() != pastTotal)
        past.assign(pastTotal, 0.0f);
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

    fitQueue();
    return delay;
}

/** To delaySamples, by silence behind the newest end or by dropping the oldest samples. */
void FractionalDelay::fitQueue()
{
    const auto surplus = static_cast<int>(queue.numSamples - delaySamples);
    if (surplus < 0)
        queue.add(Signal32(numChannels, -surplus, 0.0f));
    else
        queue.skip(surplus);
}

void FractionalDelay::reset()
{
    if (numChannels > 0 && sampleRate > 0.0)
    {
        queue.clear();
        if (delaySamples > 0)
            queue.add(Signal32(numChannels, delaySamples, 0.0f));
    }
    std::fill(past.begin(), past.end(), 0.0f);
}

Signal32 FractionalDelay::process(const Signal32& input)
{
    const int samples = input.numSamples;
    if (samples < 1)
        return Signal32(numChannels, samples);

    // The line moves on into a new block, as the old one is the queue's.
    fitQueue();
    Signal32 line(numChannels, delaySamples + oversampling * samples);
    queue.peek(line);
    upsample(input, line);
    Signal32 output = modulationType != ModulationGenerator::None ? readModulated(line, samples)
                                                                  : readDecimated(line, samples);
    queue.clear();
    queue.add(line);
    queue.skip(oversampling * samples);
    return output;
}

/** Writes the input at twice its rate to the end of the line. */
void FractionalDelay::upsample(const Signal32& input, Signal32& line)
{
    const auto samples = static_cast<std::size_t>(input.numSamples);
    if (recent.size() < pastLength + samples)
        recent.resize(pastLength + samples);
    auto channelPast = past.begin();
    for (int channel = 0; channel < numChannels; ++channel, channelPast += pastLength)
    {
        std::copy_n(channelPast, pastLength, recent.begin());
        std::copy_n(input.getChannelPtr(channel), samples, recent.begin() + pastLength);
        check(upsampleByTwo_32f(recent.data() + pastLength, line.getWriteChannelPtr(channel) + delaySamples,
                                input.numSamples, halfBand.data()));
        std::copy_n(recent.data() + samples, pastLength, channelPast);
    }
}

Signal32 FractionalDelay::readModulated(const Signal32& line, int samples)
{
    Signal32 output(numChannels, samples);
    sources.resize(static_cast<std::size_t>(numChannels));
    destinations.resize(static_cast<std::size_t>(numChannels));
    for (int channel = 0; channel < numChannels; ++channel)
    {
        sources[static_cast<std::size_t>(channel)] = line.getChannelPtr(channel);
        destinations[static_cast<std::size_t>(channel)] = output.getWriteChannelPtr(channel);
    }

    MovingRead read{.offsets = nullptr,
                    .samples = samples,
                    .delay = delay,
                    .sampleRate = static_cast<float>(sampleRate),
                    .lineLength = line.numSamples};
    if (modulation.hasEqualChannels())
    {
        if (offsets.size() < static_cast<std::size_t>(samples))
            offsets.resize(static_cast<std::size_t>(samples));
        modulation.generateShared(offsets.data(), samples);
        read.offsets = offsets.data();
        check(readMoving_32f(read, sources, destinations));
        return output;
    }

    const Signal32 channelOffsets = modulation.generate(samples);
    for (std::size_t channel = 0; channel < sources.size(); ++channel)
    {
        read.offsets = channelOffsets.getChannelPtr(static_cast<int>(channel));
        check(readMoving_32f(read, {&sources[channel], 1}, {&destinations[channel], 1}));
    }
    return output;
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
