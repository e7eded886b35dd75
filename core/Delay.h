/**
    Delay line with a fixed maximum, that crossfades when its delay changes.

    The owner writes the three lengths directly. Setting delaySamples alone makes the next block fade from the
    old delay to the new one with raised cosines; setting currentDelaySamples as well makes the change hard.
    Setting numChannels to 0 empties the line at the next block.

    Samples wait in a queue that always holds maxDelaySamples between blocks. Thread: one at a time.
*/
#pragma once

#include "core/Signal.h"
#include "core/SignalQueue.h"

namespace vesk::audio
{

template <typename T>
class Delay
{
public:
    virtual ~Delay() = default;

    Signal<T> process(const Signal<T>& input);

    SignalQueue<Signal32> queue;
    int numChannels = 0; ///< 0: rebuild at the next block
    int delaySamples = 0;
    int currentDelaySamples = 0;
    int maxDelaySamples = 0;
};

extern template class Delay<float>;

} // namespace vesk::audio
