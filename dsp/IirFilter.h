/**
    Recursive filters over all channels of a signal, in single and in double precision.

        IirFilter32 filter;
        filter.setFilter(2, IirCoefficients::createLowPass(1000.0, 48000.0));
        filter.process(block, block); // in place
        filter.setFilter(2, IirCoefficients::createLowPass(2000.0, 48000.0)); // the sound goes on, no jump

    New coefficients of the same order keep each channel's delay values. These are the values of the
    transposed direct form II, which hold what the past adds to the coming outputs, so they stay
    meaningful under other coefficients. Double precision is for cut-offs far below the sample rate, where
    the poles crowd at 1.

    Coefficients have an a[0] other than 0. Nothing here looks at a kernel's status, so nothing throws.

    Cost: 2 order + 1 multiplications for each sample and channel; setFilter allocates. Thread: one at a time.
*/
#pragma once

#include "core/Signal.h"
#include "core/kernels.h"
#include "dsp/IirCoefficients.h"

#include <cstdint>
#include <type_traits>
#include <vector>

namespace vesk::audio
{

/** What the two precisions share: the states and their coefficients. Sample is float or double. */
template <typename Sample>
class IirFilterStates
{
public:
    using State = std::conditional_t<std::is_same_v<Sample, float>, IirState32, IirState64>;
    using SampleSignal = std::conditional_t<std::is_same_v<Sample, float>, Signal32, Signal64>;

    IirFilterStates() = default;
    ~IirFilterStates();
    IirFilterStates(const IirFilterStates&) = delete;
    IirFilterStates& operator=(const IirFilterStates&) = delete;

    /** Installs coefficients for all channels. If neither the order nor the channel count changes the delay
        values stay, else they are zero. */
    void setFilter(int channels, const IirCoefficients& newCoefficients);

    /** Filters one channel alone, in place if wanted. For signals whose channels are known to be the same. */
    void processChannel(int channel, const Sample* source, Sample* destination, int samples);

    // State, open to inspection; only the operations above write it.

    IirCoefficients coefficients;
    std::vector<State*> states;         ///< one for each channel, each in its buffer
    std::vector<std::uint8_t*> buffers; ///< the states' memory, owned
    int order = 0;
    int numChannels = 0;
    SampleSignal delayLine; ///< numChannels by order; the delay values at the last setFilter

private:
    void allocate(int channels, const IirCoefficients& newCoefficients);
    void freeBuffers();
    static std::vector<Sample> getIppTaps(const IirCoefficients& newCoefficients);
};

class IirFilter32 : public IirFilterStates<float>
{
public:
    /** Filters numChannels channels over the input's length.
        @param output  dimensioned by the caller; may be the same signal as the input */
    void process(const Signal32& input, Signal32& output);

    /** Forgets the past: all delay values to zero. */
    void reset();
};

class IirFilter64 : public IirFilterStates<double>
{
public:
    /** A new signal of numChannels by the input's length. */
    Signal64 process(const Signal64& input);
};

extern template class IirFilterStates<float>;
extern template class IirFilterStates<double>;

} // namespace vesk::audio
