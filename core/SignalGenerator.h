/**
    Tones and raised-cosine ramps as signals: the source of every crossfade and gain ramp. All channels of a
    result are the same.

    Raises std::runtime_error ("IPP exception: ...") if a kernel fails: for a tone at or above half the sample
    rate, and thus for a ramp of a single sample.
*/
#pragma once

#include "core/Signal.h"

namespace vesk::audio
{

template <typename T>
class SignalGenerator
{
public:
    /** amplitude * cos(2 pi frequency / sampleRate n + phase); phase in radians, advanced by the call. */
    static Signal<T> generateTone(int channels, int samples, float sampleRate, float amplitude,
                                  float frequency, float& phase);

    /** from + (to - from) / 2 (1 - cos(pi n / samples)): starts at from, ends one step short of to. */
    static Signal<T> generateSinusRamp(int channels, int samples, float from, float to);
};

extern template class SignalGenerator<float>;

} // namespace vesk::audio
