#include "reverb/Reverberation.h"

#include "core/MathEx.h"
#include "core/SignalGenerator.h"
#include "core/kernels.h"
#include "reverb/ParameterTable.h"

#include <algorithm>
#include <cassert>
#include <stdexcept>

namespace vesk::audio
{

namespace
{
/** Linear, about -112 dBFS. The largest sample counts, not the largest magnitude. */
constexpr float silenceThreshold = 2.5e-06f;

/** How many reverb times and pre-delays of silence pass before the stages rest. */
constexpr float silenceMargin = 2.0f;

const ParameterInfo& getInfo(int index)
{
    if (static_cast<unsigned>(index) >= parameterTable.size())
        throw std::out_of_range("Parameter index");
    return parameterTable[static_cast<std::size_t>(index)];
}

/** The form in which a parameter of this unit is kept. */
float toStoredValue(ParameterUnit unit, float value)
{
    switch (unit)
    {
    case ParameterUnit::index: return static_cast<float>(static_cast<int>(value + 0.5f));
    case ParameterUnit::toggle: return value > 0.5f ? 1.0f : 0.0f;
    default: return value;
    }
}
} // namespace

//==============================================================================
// Parameters

void Reverberation::getParameterRange(int index, float& low, float& high)
{
    const ParameterInfo& info = getInfo(index);
    low = info.minimum;
    high = info.maximum;
}

float Reverberation::getParameterValue(int index) { return get(getInfo(index).index); }

void Reverberation::setParameterValue(int index, float value, bool effectuateNow)
{
    float low = 0.0f;
    float high = 0.0f;
    getParameterRange(index, low, high);
    // In this order not-a-number becomes the maximum.
    const float clamped = std::max(std::min(high, value), low);

    if (getParameterValue(index) != clamped)
    {
        const ParameterInfo& info = getInfo(index);
        const float stored = toStoredValue(info.unit, clamped);
        // Made ready and let go of while nobody waits for a lock.
        auto lines = (info.effects & rebuildsLines) != 0 ? createLines(stored) : FeedbackNetwork::Lines();
        const std::scoped_lock tail(tailLock);
        const std::scoped_lock early(earlyLock);
        parameters[info.index].store(stored, std::memory_order_relaxed);
        applyParameterChange(info.effects, lines);
    }
    if (effectuateNow)
        effectuateParameterChanges();
}

//==============================================================================
// Run

Signal32 Reverberation::process(const Signal32& input, bool bypassed)
{
    assert(hasChannels() && input.numChannels >= inputFormat.numChannels && input.numSamples > 0);
    updateSilenceClock(input);
    if (bypassed || isTailFinished())
        return convertChannelFormat(input);

    const float dryLevel = get(dryGain);
    const float wetLevel = get(wetGain);
    Signal32 result = applySmoothScaling(wetLevel, previousWetGain, createWetSignal(input));
    if (!isOn(muteDry))
        result += applySmoothScaling(dryLevel, previousDryGain, convertChannelFormat(input));

    // A block of one sample has no room for a ramp: it stays at the old gains, and the next block makes the
    // change.
    if (input.numSamples > 1)
    {
        previousDryGain = dryLevel;
        previousWetGain = wetLevel;
    }
    return result;
}

void Reverberation::updateSilenceClock(const Signal32& input)
{
    float level = 0.0f;
    for (int channel = 0; channel < inputFormat.numChannels; ++channel)
    {
        float largest = 0.0f;
        check(ippsMax_32f(input.getChannelPtr(channel), input.numSamples, &largest));
        level = channel == 0 ? largest : std::max(level, largest);
    }
    if (level > silenceThreshold)
        silentTime = 0.0f;
    else
        silentTime += static_cast<float>(input.numSamples / inputFormat.sampleRate);
}

bool Reverberation::isTailFinished() const
{
    const float longestTime = std::max(get(lowTimeScale) / 100.0f, 1.0f) * get(reverbTime);
    return silentTime > silenceMargin * (get(preDelay) / 1000.0f + longestTime);
}

Signal32 Reverberation::createWetSignal(const Signal32& input)
{
    Signal32 wet = createEarlySignal(input);
    const Signal32 tailInput = channelMappingNeeded ? downMixSignal(input) : input;
    {
        const std::scoped_lock lock(tailLock);
        if (!isOn(muteTail))
            wet += createTailSignal(tailInput);
        // After the sum: the pre-delay holds off early reflections and tail alike.
        wet = preDelayLine.process(wet);
    }

    const float spread = get(stereoSpread);
    return spread < 100.0f ? applyStereoSpread(wet, spread / 100.0f) : wet;
}

Signal32 Reverberation::createEarlySignal(const Signal32& input)
{
    if (!isOn(muteEarly) && !earlyUpdating.load(std::memory_order_relaxed))
    {
        const std::scoped_lock lock(earlyLock);
        return earlyReflections.processSummed(input);
    }
    return Signal32(outputFormat.numChannels, input.numSamples, 0.0f);
}

/** Called under tailLock. */
Signal32 Reverberation::createTailSignal(const Signal32& tailInput)
{
    Signal32 tail = processTail(tailInput);
    if (get(modulationDepth) > 0.0f)
        tail = modulationDelay.process(tail);
    if (channelMappingNeeded)
        tail = upMixSignal(tail);
    return postProcessor.process(tail);
}

/** Gains in dB; a change is one raised-cosine ramp from block edge to block edge. */
Signal32 Reverberation::applySmoothScaling(float gain, float previousGain, Signal32 signal)
{
    const float from = MathEx::fromDecibel(previousGain);
    if (gain == previousGain || signal.numSamples < 2)
    {
        const bool isShared = signal.data.use_count() > 1;
        if (isShared)
            return from * signal;
        signal *= from;
        return signal;
    }
    return SignalGenerator<float>::generateSinusRamp(outputFormat.numChannels, signal.numSamples, from,
                                                     MathEx::fromDecibel(gain)) *
           signal;
}

} // namespace vesk::audio
