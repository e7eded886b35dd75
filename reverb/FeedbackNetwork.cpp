#include "reverb/FeedbackNetwork.h"

#include "core/MathEx.h"
#include "core/kernels.h"
#include "dsp/IirCoefficients.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numbers>
#include <utility>

namespace vesk::audio
{

namespace
{
/** Seconds, in the smallest room: the reciprocals fall evenly from 30 to 14.3 per second, so no delay is a
    simple multiple of another. */
constexpr auto lineDelayTimes = []
{
    std::array<float, FeedbackNetwork::numLines> times{};
    for (std::size_t n = 0; n < times.size(); ++n)
        times[n] = static_cast<float>(1.0 / (30.0 - 1.046875 * static_cast<double>(n)));
    return times;
}();

/** The rows of the Hadamard matrix have the length sqrt(16). */
constexpr float matrixNormalisation = 0.25f;

/** Within this many percent of equal reverb times the shelf does nothing worth its cost. */
constexpr float shelfTolerance = 1.0f;

/** The share of the input that stays in its channel, and the share that is swapped along with the feedback. */
constexpr float ownShare = 0.65f;
constexpr float crossShare = 0.35f;

/** Samples in one frame: long enough that its set-up counts for little, and short enough that few of a ring's
    samples have to be moved where a frame reaches over the end. */
constexpr int frameLimit = 256;

/** Rings start at multiples of a cache line. */
constexpr int ringAlignment = 16;

/** In large rooms with the shortest times a line's gain underflows to 0, and the ratio of the shelf would be
    infinite. This floor is far below what can be heard, and leaves the ratio finite. */
constexpr float lowestLineGain = 1.0e-20f;

/** Between which delays the channels of a line fall: rank 0 is the line's own delay, and each further rank is
    a step towards the next line's. */
int getChannelRank(int channel, int channels)
{
    return channels == 2 ? channel : channel / 2 + 2 * (channel % 2);
}
} // namespace

FeedbackNetwork::FeedbackNetwork() = default;

//==============================================================================
// Set up

FeedbackNetwork::Lines::Lines(int channels, double rate, float roomSize)
    : numChannels(channels), sampleRate(rate), roomScale(1.0f + 4.0f * roomSize / 100.0f)
{
    assert(channels <= maxChannels && channels != 3);
    if (channels < 1)
        return;

    const auto step = static_cast<double>(
        static_cast<float>(std::pow(static_cast<double>(lineDelayTimes[1] / lineDelayTimes[0]),
                                    static_cast<double>(1.0f / static_cast<float>(channels)))));
    // The ring, what a frame reaches beyond its end, and the next cache line.
    const auto getRoom = [](const Ring& ring)
    {
        return (ring.length + frameLimit + FeedbackFrame::overhang) / ringAlignment * ringAlignment +
               ringAlignment;
    };

    int total = 0;
    for (int channel = 0; channel < channels; ++channel)
        for (int n = 0; n < numLines; ++n)
        {
            // The lengths are whole samples of a product whose rounding is part of the sound's definition.
            const float delay = roomScale * lineDelayTimes[index(n)];
            const double stretch = std::pow(step, getChannelRank(channel, channels));
            Ring& ring = rings[index(channel)][index(n)];
            ring.length = static_cast<int>(stretch * static_cast<double>(delay) * sampleRate);
            total += getRoom(ring);
        }

    memory.assign(index(total), 0.0f);
    float* next = memory.data();
    for (int channel = 0; channel < channels; ++channel)
        for (auto& ring : rings[index(channel)])
        {
            ring.samples = next;
            next += getRoom(ring);
        }
}

void FeedbackNetwork::setLines(int channels, double sampleRate, float roomSize)
{
    Lines newLines(channels, sampleRate, roomSize);
    swapLines(newLines);
}

void FeedbackNetwork::swapLines(Lines& newLines)
{
    std::swap(lines, newLines);
    filters.clear(); // what they hold would come back as a faint copy of the earlier tail
}

void FeedbackNetwork::setDecay(const Decay& decay)
{
    const bool shelfActive = std::abs(decay.lowTimeScale - 100.0f) > shelfTolerance;

    const float nyquist = 0.5f * static_cast<float>(lines.sampleRate);
    const auto dampingFrequency = static_cast<double>(std::min(nyquist, decay.dampingFrequency));
    const auto crossoverFrequency = static_cast<double>(std::min(0.9f * nyquist, decay.crossoverFrequency));
    const float lowTime = decay.reverbTime * decay.lowTimeScale / 100.0f;

    for (int n = 0; n < numLines; ++n)
    {
        const float delay = lines.roomScale * lineDelayTimes[index(n)];
        const float midGain = matrixNormalisation * MathEx::reverbTimeToGain(decay.reverbTime, delay);
        const float lowGain = matrixNormalisation * MathEx::reverbTimeToGain(lowTime, delay);
        const float gain = std::max(lowGain, lowestLineGain);

        // Longer lines damp more: the exponent grows with the delay, the less the lower the corner is.
        const double openness = std::sin(dampingFrequency * std::numbers::pi / lines.sampleRate);
        const auto relativeDelay =
            static_cast<double>(lineDelayTimes[index(n)]) / static_cast<double>(lineDelayTimes[0]);
        const double smoothing = 1.0 - std::pow(openness, std::pow(relativeDelay, std::sqrt(openness)));

        const auto [b, a] = IirCoefficients::createHighShelf(
            crossoverFrequency, static_cast<double>(midGain / gain), lines.sampleRate);
        const std::array shelf{b[0] / a[0], b[1] / a[0], b[2] / a[0], a[1] / a[0], a[2] / a[0]};
        filters.setLine(index(n), static_cast<double>(gain), smoothing, shelfActive ? &shelf : nullptr);
    }
}

//==============================================================================
// Run

Signal32 FeedbackNetwork::process(const Signal32& input)
{
    assert(lines.numChannels > 0 && getLineLength(0, 0) > 0);
    Signal32 output(lines.numChannels, input.numSamples);
    // The first channel of the first line is the shortest of all.
    const int limit = std::min(getLineLength(0, 0), frameLimit);
    for (int start = 0; start < input.numSamples; start += limit)
        processFrame(input, output, start, std::min(limit, input.numSamples - start));
    return output;
}

void FeedbackNetwork::processFrame(const Signal32& input, Signal32& output, int start, int length)
{
    FeedbackFrame frame{
        .numChannels = lines.numChannels, .length = length, .ownShare = ownShare, .crossShare = crossShare};
    for (int channel = 0; channel < lines.numChannels; ++channel)
    {
        frame.input[index(channel)] = input.getChannelPtr(channel) + start;
        frame.output[index(channel)] = output.getWriteChannelPtr(channel) + start;
        for (std::size_t n = 0; n < lines.rings[index(channel)].size(); ++n)
            frame.memory[index(channel)][n] = lines.rings[index(channel)][n].open(length);
    }
    check(runFeedbackFrame_32f(filters, frame));
    for (int channel = 0; channel < lines.numChannels; ++channel)
        for (auto& ring : lines.rings[index(channel)])
            ring.close(length);
}

float* FeedbackNetwork::Ring::open(int frameLength)
{
    if (const int over = position + frameLength - length; over > 0)
        std::copy_n(samples, over, samples + length);
    return samples + position;
}

void FeedbackNetwork::Ring::close(int frameLength)
{
    position += frameLength;
    if (position < length)
        return;
    position -= length;
    std::copy_n(samples + length, position, samples);
}

} // namespace vesk::audio
