// From the input's layout to the tail's channels and on to the output's layout, by speaker position, and the
// stereo spread.

#include "core/VectorOps.h"
#include "core/kernels.h"
#include "reverb/Reverberation.h"

#include <array>
#include <cmath>

namespace vesk::audio
{

namespace
{
constexpr SpeakerPosition frontLeft{-1.0f, 1.0f, 0.0f, Regular, -1.0f};
constexpr SpeakerPosition frontRight{1.0f, 1.0f, 0.0f, Regular, -1.0f};

/** Low-frequency and unknown channels take no part in the room. */
bool isSpatial(const SpeakerPosition& speaker) { return speaker.type <= Mono; }

/** An equal-power panner on the square between the tail's virtual speakers: front left, front right, rear
    left, rear right. */
std::array<float, FeedbackNetwork::maxChannels> getPanningWeights(const SpeakerPosition& speaker)
{
    const float right = (speaker.x + 1.0f) / 2.0f;
    const float front = (speaker.y + 1.0f) / 2.0f;
    const auto weight = [](float side, float depth) { return std::sqrt(side) * std::sqrt(depth); };
    return {weight(1.0f - right, front), weight(right, front), weight(1.0f - right, 1.0f - front),
            weight(right, 1.0f - front)};
}

/** Adds weighted channels to a destination; the first one is written, not added. */
class ChannelSum
{
public:
    explicit ChannelSum(float* channelDestination) : destination(channelDestination) {}

    void add(const float* source, float weight, Signal32& scratch, int samples)
    {
        if (isEmpty)
        {
            check(ippsMulC_32f(source, weight, destination, samples));
            isEmpty = false;
            return;
        }
        float* weighted = scratch.getWriteChannelPtr(0);
        check(ippsMulC_32f(source, weight, weighted, samples));
        check(ippsAdd_32f(destination, weighted, destination, samples));
    }

private:
    float* destination;
    bool isEmpty = true;
};
} // namespace

Signal32 Reverberation::convertChannelFormat(const Signal32& input)
{
    if (!channelMappingNeeded)
        return input;

    Signal32 output(outputFormat.numChannels, input.numSamples, 0.0f);
    for (int in = 0; in < inputFormat.numChannels; ++in)
    {
        const SpeakerPosition& source = inputFormat.speakers[static_cast<std::size_t>(in)];
        if (source.type == Unknown)
            continue;
        for (int out = 0; out < outputFormat.numChannels; ++out)
        {
            // A mono bus feeds both fronts. Any other channel goes to its equal alone: there is no down-mix.
            const SpeakerPosition& target = outputFormat.speakers[static_cast<std::size_t>(out)];
            const bool feeds =
                source.type == Mono ? target == frontLeft || target == frontRight : target == source;
            if (feeds)
                vo::copy(input.getChannelPtr(in), output.getWriteChannelPtr(out), input.numSamples);
        }
    }
    return output;
}

Signal32 Reverberation::downMixSignal(const Signal32& input)
{
    Signal32 result(tailChannels, input.numSamples, 0.0f);
    Signal32 scratch(1, input.numSamples);
    for (int channel = 0; channel < tailChannels; ++channel)
    {
        ChannelSum sum(result.getWriteChannelPtr(channel));
        for (int in = 0; in < inputFormat.numChannels; ++in)
        {
            const SpeakerPosition& speaker = inputFormat.speakers[static_cast<std::size_t>(in)];
            const float weight = getPanningWeights(speaker)[static_cast<std::size_t>(channel)];
            if (isSpatial(speaker) && weight > 0.0f)
                sum.add(input.getChannelPtr(in), weight, scratch, input.numSamples);
        }
    }
    return result;
}

Signal32 Reverberation::upMixSignal(const Signal32& tail)
{
    Signal32 result(outputFormat.numChannels, tail.numSamples, 0.0f);
    Signal32 scratch(1, tail.numSamples);
    for (int out = 0; out < outputFormat.numChannels; ++out)
    {
        const SpeakerPosition& speaker = outputFormat.speakers[static_cast<std::size_t>(out)];
        if (!isSpatial(speaker))
            continue;
        const auto weights = getPanningWeights(speaker);
        ChannelSum sum(result.getWriteChannelPtr(out));
        for (int channel = 0; channel < tailChannels; ++channel)
            if (const float weight = weights[static_cast<std::size_t>(channel)]; weight > 0.0f)
                sum.add(tail.getChannelPtr(channel), weight, scratch, tail.numSamples);
    }
    return result;
}

Signal32 Reverberation::applyStereoSpread(const Signal32& signal, float spread)
{
    const auto isSpatialOutput = [this](int channel)
    { return isSpatial(outputFormat.speakers[static_cast<std::size_t>(channel)]); };
    const int channels = outputFormat.numChannels;
    const int samples = signal.numSamples;

    Signal32 mono(1, samples);
    float* sum = mono.getWriteChannelPtr(0);
    vo::copy(signal.getChannelPtr(0), sum, samples);
    for (int channel = 1; channel < channels; ++channel)
        if (isSpatialOutput(channel))
            check(ippsAdd_32f(sum, signal.getChannelPtr(channel), sum, samples));
    // At the power of one average channel, then at its share of the result.
    mono *= std::sqrt(1.0f / static_cast<float>(channels));
    mono *= 1.0f - spread;

    Signal32 result(channels, samples);
    for (int channel = 0; channel < channels; ++channel)
    {
        float* destination = result.getWriteChannelPtr(channel);
        const bool narrowed = isSpatialOutput(channel);
        check(ippsMulC_32f(signal.getChannelPtr(channel), narrowed ? spread : 1.0f, destination, samples));
        if (narrowed)
            check(ippsAdd_32f(mono.getChannelPtr(0), destination, destination, samples));
    }
    return result;
}

} // namespace vesk::audio
