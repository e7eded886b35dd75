#include "reverb/FeedbackNetwork.h"

#include "core/MathEx.h"
#include "core/kernels.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numbers>

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

/** Samples of all lines and channels in one frame, 16 kB; the mix and the rings take as much again. */
constexpr int frameBudget = 4096;

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

void FeedbackNetwork::setLines(int channels, double rate, float roomSize)
{
    assert(channels <= maxChannels && channels != 3);
    numChannels = channels;
    sampleRate = rate;
    roomScale = 1.0f + 4.0f * roomSize / 100.0f;
    clearFilters();
    if (channels < 1)
        return;

    const auto step = static_cast<double>(
        static_cast<float>(std::pow(static_cast<double>(lineDelayTimes[1] / lineDelayTimes[0]),
                                    static_cast<double>(1.0f / static_cast<float>(channels)))));
    int total = 0;
    for (int n = 0; n < numLines; ++n)
        for (int channel = 0; channel < channels; ++channel)
        {
            // The lengths are whole samples of a product whose rounding is part of the sound's definition.
            const float delay = roomScale * lineDelayTimes[index(n)];
            const double stretch = std::pow(step, getChannelRank(channel, channels));
            Ring& ring = lines[index(n)].rings[index(channel)];
            ring.length = static_cast<int>(stretch * static_cast<double>(delay) * sampleRate);
            ring.position = 0;
            total += (ring.length + ringAlignment - 1) / ringAlignment * ringAlignment;
        }

    ringMemory.assign(index(total), 0.0f);
    float* next = ringMemory.data();
    for (auto& line : lines)
        for (int channel = 0; channel < channels; ++channel)
        {
            Ring& ring = line.rings[index(channel)];
            ring.samples = next;
            next += (ring.length + ringAlignment - 1) / ringAlignment * ringAlignment;
        }

    lineFrames.resize(index(frameBudget));
    mixFrames.resize(index(frameBudget));
    shelfFrame.resize(index(frameBudget / numLines));
    injection.resize(index(2 * frameBudget / numLines));
}

/** What the filters hold would come back as a faint copy of the earlier tail. */
void FeedbackNetwork::clearFilters()
{
    for (auto& line : lines)
    {
        line.damping.reset();
        // A change of the channel count is what clears a double-precision filter.
        const IirCoefficients shelf = line.shelf.coefficients;
        line.shelf.setFilter(0, shelf);
        line.shelf.setFilter(numChannels, shelf);
    }
}

void FeedbackNetwork::setDecay(const Decay& decay)
{
    shelfActive = std::abs(decay.lowTimeScale - 100.0f) > shelfTolerance;

    const float nyquist = 0.5f * static_cast<float>(sampleRate);
    const auto dampingFrequency = static_cast<double>(std::min(nyquist, decay.dampingFrequency));
    const auto crossoverFrequency = static_cast<double>(std::min(0.9f * nyquist, decay.crossoverFrequency));
    const float lowTime = decay.reverbTime * decay.lowTimeScale / 100.0f;

    for (int n = 0; n < numLines; ++n)
    {
        Line& line = lines[index(n)];
        const float delay = roomScale * lineDelayTimes[index(n)];
        const float midGain = matrixNormalisation * MathEx::reverbTimeToGain(decay.reverbTime, delay);
        const float lowGain = matrixNormalisation * MathEx::reverbTimeToGain(lowTime, delay);
        line.gain = std::max(lowGain, lowestLineGain);

        // Longer lines damp more: the exponent grows with the delay, the less the lower the corner is.
        const double openness = std::sin(dampingFrequency * std::numbers::pi / sampleRate);
        const auto relativeDelay =
            static_cast<double>(lineDelayTimes[index(n)]) / static_cast<double>(lineDelayTimes[0]);
        const double smoothing = 1.0 - std::pow(openness, std::pow(relativeDelay, std::sqrt(openness)));
        line.damping.setFilter(numChannels, IirCoefficients::createSmoothing(smoothing));

        line.shelf.setFilter(numChannels,
                             IirCoefficients::createHighShelf(
                                 crossoverFrequency, static_cast<double>(midGain / line.gain), sampleRate));
    }
}

//==============================================================================
// Run

int FeedbackNetwork::getFrameLimit() const
{
    // The first channel of the first line is the shortest of all.
    return std::min(getLineLength(0, 0), frameBudget / (numLines * numChannels));
}

Signal32 FeedbackNetwork::process(const Signal32& input)
{
    assert(numChannels > 0 && getLineLength(0, 0) > 0);
    Signal32 output(numChannels, input.numSamples);
    const int limit = getFrameLimit();
    for (int start = 0; start < input.numSamples; start += limit)
        processFrame(input, output, start, std::min(limit, input.numSamples - start));
    return output;
}

void FeedbackNetwork::processFrame(const Signal32& input, Signal32& output, int start, int length)
{
    readLines(length);
    filterLines(length);
    mixLines(length);
    prepareInjection(input, start, length);
    writeLines(length);

    // The last line, as it is after the mix and without the input: its row of the matrix has the signs
    // (-1)^(number of set bits of n), the least regular one.
    const float* heard = getLineFrame(lineFrames, numLines - 1, length);
    for (int channel = 0; channel < numChannels; ++channel)
        check(
            ippsMulC_32f(heard + channel * length, 1.0f, output.getWriteChannelPtr(channel) + start, length));
}

void FeedbackNetwork::readLines(int length)
{
    for (int n = 0; n < numLines; ++n)
    {
        const Line& line = lines[index(n)];
        float* frame = getLineFrame(lineFrames, n, length);
        for (int channel = 0; channel < numChannels; ++channel, frame += length)
        {
            const Ring& ring = line.rings[index(channel)];
            const int first = std::min(length, ring.length - ring.position);
            check(ippsMulC_32f(ring.samples + ring.position, line.gain, frame, first));
            if (first < length)
                check(ippsMulC_32f(ring.samples, line.gain, frame + first, length - first));
        }
    }
}

void FeedbackNetwork::filterLines(int length)
{
    for (int n = 0; n < numLines; ++n)
    {
        Line& line = lines[index(n)];
        float* frame = getLineFrame(lineFrames, n, length);
        for (int channel = 0; channel < numChannels; ++channel, frame += length)
        {
            if (shelfActive)
                applyShelf(line.shelf, channel, frame, length);
            line.damping.processChannel(channel, frame, frame, length);
        }
    }
}

void FeedbackNetwork::applyShelf(IirFilter64& shelf, int channel, float* frame, int length)
{
    double* precise = shelfFrame.data();
    check(ippsConvert_32f64f(frame, precise, length));
    shelf.processChannel(channel, precise, precise, length);
    check(ippsConvert_64f32f(precise, frame, length));
}

/** The fast Hadamard transform across the lines, unnormalised. Neighbouring lines lie next to each other, so
    each butterfly of h lines is one addition and one subtraction of long arrays, from one buffer into the
    other. */
void FeedbackNetwork::mixLines(int length)
{
    const int stride = numChannels * length;
    float* source = lineFrames.data();
    float* destination = mixFrames.data();
    for (int h = 1; h < numLines; h *= 2)
    {
        const int half = h * stride;
        for (int first = 0; first < numLines * stride; first += 2 * half)
        {
            const float* upper = source + first;
            const float* lower = upper + half;
            check(ippsAdd_32f(upper, lower, destination + first, half));
            check(ippsSub_32f(lower, upper, destination + first + half, half));
        }
        std::swap(source, destination);
    }
    static_assert(numLines == 16, "after an even number of stages the result is back in lineFrames");
}

int FeedbackNetwork::getSwappedChannel(int line, int channel) const
{
    if (numChannels == 1)
        return 0;
    const bool frontToRear = numChannels > 3 && line % 2 == 0;
    return frontToRear ? (channel + 2) % numChannels : channel ^ 1;
}

void FeedbackNetwork::prepareInjection(const Signal32& input, int start, int length)
{
    float* cross = mixFrames.data();
    float* injected = injection.data();
    for (int parity = 0; parity < 2; ++parity)
        for (int channel = 0; channel < numChannels; ++channel, injected += length)
        {
            const float* own = input.getChannelPtr(channel) + start;
            const float* other = input.getChannelPtr(getSwappedChannel(parity, channel)) + start;
            check(ippsMulC_32f(other, crossShare, cross, length));
            check(ippsMulC_32f(own, ownShare, injected, length));
            check(ippsAdd_32f(cross, injected, injected, length));
        }
}

void FeedbackNetwork::writeLines(int length)
{
    for (int n = 0; n < numLines; ++n)
    {
        const float* frame = getLineFrame(lineFrames, n, length);
        for (int channel = 0; channel < numChannels; ++channel)
        {
            const float* feedback = frame + getSwappedChannel(n, channel) * length;
            const float* injected = injection.data() + ((n % 2) * numChannels + channel) * length;
            Ring& ring = lines[index(n)].rings[index(channel)];
            const int first = std::min(length, ring.length - ring.position);
            check(ippsAdd_32f(feedback, injected, ring.samples + ring.position, first));
            if (first < length)
                check(ippsAdd_32f(feedback + first, injected + first, ring.samples, length - first));
            ring.position += length;
            if (ring.position >= ring.length)
                ring.position -= ring.length;
        }
    }
}

} // namespace vesk::audio
