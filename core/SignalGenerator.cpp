#include "core/SignalGenerator.h"

#include "core/VectorOps.h"
#include "core/kernels.h"

#include <cmath>
#include <numbers>

namespace vesk::audio
{

namespace
{
/** A signal whose channels all carry one tone, generated once. */
Signal<float> makeTone(int channels, int samples, float magnitude, float frequency, float& phase)
{
    Signal<float> tone(channels, samples);
    if (channels < 1)
        return tone;
    vo::generateSinusoidal(magnitude, frequency, phase, tone.getWriteChannelPtr(0), samples);
    for (int channel = 1; channel < channels; ++channel)
        vo::copy(tone.getChannelPtr(0), tone.getWriteChannelPtr(channel), samples);
    return tone;
}
} // namespace

template <typename T>
Signal<T> SignalGenerator<T>::generateTone(int channels, int samples, float sampleRate, float amplitude,
                                           float frequency, float& phase)
{
    return makeTone(channels, samples, amplitude, frequency / sampleRate, phase);
}

template <typename T>
Signal<T> SignalGenerator<T>::generateSinusRamp(int channels, int samples, float from, float to)
{
    const float amplitude = (to - from) * 0.5f;
    float phase = std::numbers::pi_v<float>;
    const auto frequency = static_cast<float>(0.5 / samples);

    // The tone is -|amplitude| cos(pi n / samples).
    const Signal<float> tone = makeTone(channels, samples, std::abs(amplitude), frequency, phase);
    Signal<float> ramp(channels, samples, from + amplitude);
    if (amplitude > 0.0f)
        return ramp + tone;
    for (int channel = 0; channel < channels && samples > 0; ++channel)
        check(ippsSub_32f(tone.getChannelPtr(channel), ramp.getChannelPtr(channel),
                          ramp.getWriteChannelPtr(channel), samples));
    return ramp;
}

template class SignalGenerator<float>;

} // namespace vesk::audio
