// Early reflections: from rows of a table to a matrix of impulse responses, one for each pair of output and
// input.
//
// Each row places one burst of enveloped noise, not a single tap. The burst rises exponentially from -24 dB
// and falls back to it. Its time scales with the room, its level follows the tail's decay, and its balance
// decides how much stays on the side of the input's speaker. Speakers in front of or behind the input hear it
// later and softer. The equalizer of the whole reverb is part of the responses.

#include "core/MathEx.h"
#include "core/VectorOps.h"
#include "core/kernels.h"
#include "reverb/Reverberation.h"
#include "reverb/ReverberationSettings.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace vesk::audio
{

namespace
{
using ReverberationSettings::Reflection;

/** s, the fall of a burst of length 1 in the smallest room; the rise takes a tenth of it. */
constexpr float baseFall = 0.003f;
constexpr float risePart = 10.0f;

/** dB, the level at which a burst starts and ends. */
constexpr float burstEdge = -24.0f;

/** The extra path from front to rear, in units of the pattern's second arrival. */
constexpr float frontBackFactor = 3.0f;

/** dB lost on that path. */
constexpr float frontBackLoss = 6.0f;

/** dB; lower early levels tilt the pattern no further. */
constexpr float lowestTilt = -24.0f;

constexpr float patternLevel = 0.01f;

/** The equalizer's response lasts about a 25th of a second: enough to shape frequencies down to 50 Hz. */
constexpr double equalizerRate = 25.0;

float power(float base, float exponent)
{
    return static_cast<float>(std::pow(static_cast<double>(base), static_cast<double>(exponent)));
}

int toSamples(float seconds, double sampleRate)
{
    return static_cast<int>(static_cast<double>(seconds) * sampleRate);
}

bool isSpatial(const SpeakerPosition& speaker) { return speaker.type <= Mono; }

/** Up while it lives, also if an exception ends its life. */
class RaisedFlag
{
public:
    explicit RaisedFlag(std::atomic<bool>& raised) : flag(raised)
    {
        flag.store(true, std::memory_order_relaxed);
    }
    ~RaisedFlag() { flag.store(false, std::memory_order_relaxed); }
    RaisedFlag(const RaisedFlag&) = delete;
    RaisedFlag& operator=(const RaisedFlag&) = delete;

private:
    std::atomic<bool>& flag;
};

/** What all rows of a pattern share. */
struct PatternScale
{
    PatternScale(std::span<const Reflection> pattern, float roomSize)
        : scale(1.0f + 4.0f * roomSize / 100.0f), fall(baseFall * scale), rise(fall / risePart),
          frontBack(frontBackFactor * pattern[1].time)
    {
    }

    float scale;     ///< 1 to 5
    float fall;      ///< s
    float rise;      ///< s
    float frontBack; ///< ms, before scaling
};

/** A bound on the end of the last burst. */
int getResponseLength(std::span<const Reflection> pattern, const PatternScale& shape, double sampleRate)
{
    int longest = 0;
    for (const Reflection& row : pattern)
    {
        const float arrival = (shape.frontBack + row.time) / 1000.0f;
        const float end = (arrival + row.length * (shape.fall + shape.rise)) * shape.scale;
        longest = std::max(longest, toSamples(end, sampleRate));
    }
    return longest + 1;
}

/** Gain of one millisecond: the tail's decay, tilted so that earlyLevel raises the start of the pattern and
    leaves its last row where the decay alone puts it. */
float getGainPerMillisecond(std::span<const Reflection> pattern, float scale, float reverbTime,
                            float earlyLevel)
{
    float lastTime = 0.0f;
    for (const Reflection& row : pattern)
        lastTime = std::max(lastTime, row.time);
    const float tilt =
        power(MathEx::fromDecibel(-std::max(earlyLevel, lowestTilt)), 1.0f / (lastTime * scale));
    return MathEx::reverbTimeToGain(reverbTime * 1000.0f, 1.0f) * tilt;
}
} // namespace

void Reverberation::updateEarlyReflections()
{
    const auto patternIndex = static_cast<std::size_t>(get(earlyPattern));
    if (patternIndex >= ReverberationSettings::earlyPatterns.size())
        return;
    const auto pattern = ReverberationSettings::earlyPatterns[patternIndex].reflections;

    const double sampleRate = inputFormat.sampleRate;
    const float level = get(earlyLevel);
    const PatternScale shape(pattern, get(roomSize));
    const float gainPerMs = getGainPerMillisecond(pattern, shape.scale, get(reverbTime), level);
    const int length = getResponseLength(pattern, shape, sampleRate);

    // One response for each output, with one channel for each input.
    std::vector<Signal32> responses;
    for (int output = 0; output < outputFormat.numChannels; ++output)
        responses.emplace_back(inputFormat.numChannels, length, 0.0f);

    // A constant seed: the same settings always give the same room. The outputs of a burst share its noise
    // and differ in weight and time.
    NoiseGenerator noise(outputFormat.numChannels, vo::Gaussian, 1.0f, 0.0f, 0);
    for (int input = 0; input < inputFormat.numChannels; ++input)
        for (const Reflection& row : pattern)
        {
            Signal32 burst = createEnvelopedNoise(input, shape.rise * row.length, shape.fall * row.length,
                                                  row.balance, noise);
            const SpeakerPosition& from = inputFormat.speakers[static_cast<std::size_t>(input)];
            for (int output = 0; output < outputFormat.numChannels; ++output)
            {
                const SpeakerPosition& to = outputFormat.speakers[static_cast<std::size_t>(output)];
                if (!isSpatial(from) || !isSpatial(to))
                    continue;

                const float time = row.time * shape.scale;
                const float distance =
                    0.5f * std::abs(to.y - from.y); // 0: level with each other, 1: front to rear
                const float arrival = 0.001f * (time + distance * shape.frontBack * shape.scale);
                const int offset = toSamples(arrival, sampleRate);
                const float weight = power(gainPerMs, time) * patternLevel * MathEx::fromDecibel(row.gain) *
                                     MathEx::fromDecibel(-frontBackLoss * distance);

                const int count = std::min(burst.numSamples, length - offset);
                if (count < 1)
                    continue;
                float* samples = burst.getWriteChannelPtr(output);
                float* destination =
                    responses[static_cast<std::size_t>(output)].getWriteChannelPtr(input) + offset;
                check(ippsMulC_32f(samples, weight, samples, count));
                check(ippsAdd_32f(destination, samples, destination, count));
            }
        }

    const Signal32 equalizer = createEqualizerImpulseResponse(
        MathEx::findNearestPowerOfTwo(static_cast<int>(sampleRate / equalizerRate)));
    for (Signal32& response : responses)
        response = MathEx::fromDecibel(level) * applyFilter(response, equalizer);

    const auto prepared = prepareIRs(earlyReflections, earlyLock, responses);
    const std::scoped_lock lock(earlyLock);
    const RaisedFlag updating(earlyUpdating);
    earlyReflections.takeIRs(*prepared);
}

/** One burst, a channel for each output. Times in seconds. */
Signal32 Reverberation::createEnvelopedNoise(int inputChannel, float riseTime, float fallTime, float balance,
                                             NoiseGenerator& noise)
{
    const int riseLength = toSamples(riseTime, inputFormat.sampleRate);
    const int fallLength = toSamples(fallTime, inputFormat.sampleRate);
    Signal32 burst = noise.generate(riseLength + fallLength);
    if (burst.numSamples < 1)
        return burst;

    const auto edge = static_cast<double>(MathEx::fromDecibel(burstEdge));
    Signal32 envelope(1, burst.numSamples);
    float* next = envelope.getWriteChannelPtr(0);
    const auto fade = [&next](double start, double step, int count)
    {
        for (double amplitude = start; count > 0; --count, amplitude *= step)
            *next++ = static_cast<float>(amplitude);
    };
    fade(edge, std::pow(edge, -1.0 / riseLength), riseLength);
    fade(1.0, std::pow(edge, 1.0 / fallLength), fallLength);

    const SpeakerPosition& from = inputFormat.speakers[static_cast<std::size_t>(inputChannel)];
    for (int output = 0; output < burst.numChannels; ++output)
    {
        const SpeakerPosition& to = outputFormat.speakers[static_cast<std::size_t>(output)];
        const float separation = std::max(std::abs(from.x - to.x), std::abs(from.y - to.y));
        const float weight = 0.5f * std::sqrt((1.0f - separation) * balance + 1.0f);
        float* samples = burst.getWriteChannelPtr(output);
        check(ippsMul_32f(samples, envelope.getChannelPtr(0), samples, burst.numSamples));
        check(ippsMulC_32f(samples, weight, samples, burst.numSamples));
    }
    return burst;
}

/** Linear-phase filtering that keeps the signal's length, without the filter's delay. */
Signal32 Reverberation::applyFilter(const Signal32& signal, const Signal32& filter)
{
    FirFilter convolution(filter);
    const Signal32 padding(signal.numChannels, filter.numSamples - 1, 0.0f);
    const Signal32 filtered = convolution.process(Signal32::concatenate(signal, padding));

    Signal32 result(signal.numChannels, signal.numSamples);
    const int delay = (filter.numSamples - 1) / 2;
    for (int channel = 0; channel < signal.numChannels; ++channel)
        vo::copy(filtered.getChannelPtr(channel) + delay, result.getWriteChannelPtr(channel),
                 signal.numSamples);
    return result;
}

} // namespace vesk::audio
