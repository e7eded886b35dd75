#include "core/Delay.h"

#include "core/SignalGenerator.h"

namespace vesk::audio
{

template <typename T>
Signal<T> Delay<T>::process(const Signal<T>& input)
{
    const int length = input.numSamples;
    if (input.numChannels != numChannels)
    {
        numChannels = input.numChannels;
        queue.clear();
        queue.add(Signal32(numChannels, maxDelaySamples, T(0)));
    }
    queue.add(input);

    const auto delayedBy = [&](int delay) { return queue.peek(maxDelaySamples - delay, length); };

    Signal<T> output = delayedBy(currentDelaySamples);
    // A ramp of a single sample does not exist: a block of one stays at the ramp's start, and the next block
    // makes the change.
    if (currentDelaySamples != delaySamples && length > 1)
    {
        using Ramp = SignalGenerator<T>;
        output = Ramp::generateSinusRamp(numChannels, length, T(1), T(0)) * output +
                 Ramp::generateSinusRamp(numChannels, length, T(0), T(1)) * delayedBy(delaySamples);
        currentDelaySamples = delaySamples;
    }
    queue.skip(length);
    return output;
}

template class Delay<float>;

} // namespace vesk::audio
