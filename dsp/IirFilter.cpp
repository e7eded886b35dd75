#include "dsp/IirFilter.h"

#include <algorithm>

namespace vesk::audio
{

namespace
{
/** The kernels of one precision under common names. */
template <typename Sample>
struct Kernels;

template <>
struct Kernels<float>
{
    static constexpr auto getStateSize = ippsIIRGetStateSize_32f;
    static constexpr auto initialize = ippsIIRInit_32f;
    static constexpr auto getDelayLine = ippsIIRGetDlyLine_32f;
    static constexpr auto filter = ippsIIR_32f;
};

template <>
struct Kernels<double>
{
    static constexpr auto getStateSize = ippsIIRGetStateSize_64f;
    static constexpr auto initialize = ippsIIRInit_64f;
    static constexpr auto getDelayLine = ippsIIRGetDlyLine_64f;
    static constexpr auto filter = ippsIIR_64f;
};
} // namespace

template <typename Sample>
IirFilterStates<Sample>::~IirFilterStates()
{
    freeBuffers();
}

template <typename Sample>
void IirFilterStates<Sample>::setFilter(int channels, const IirCoefficients& newCoefficients)
{
    const int newOrder = static_cast<int>(newCoefficients.b.size()) - 1;
    if (newOrder != order || channels != numChannels)
    {
        freeBuffers();
        allocate(channels, newCoefficients);
        return;
    }

    const auto taps = getIppTaps(newCoefficients);
    for (int channel = 0; channel < numChannels; ++channel)
    {
        const auto index = static_cast<std::size_t>(channel);
        Kernels<Sample>::getDelayLine(states[index], delayLine.getWriteChannelPtr(channel));
        Kernels<Sample>::initialize(&states[index], taps.data(), order, delayLine.getChannelPtr(channel),
                                    buffers[index]);
    }
    coefficients = newCoefficients;
}

template <typename Sample>
void IirFilterStates<Sample>::processChannel(int channel, const Sample* source, Sample* destination,
                                             int samples)
{
    Kernels<Sample>::filter(source, destination, samples, states[static_cast<std::size_t>(channel)]);
}

template <typename Sample>
void IirFilterStates<Sample>::allocate(int channels, const IirCoefficients& newCoefficients)
{
    coefficients = newCoefficients;
    order = static_cast<int>(coefficients.b.size()) - 1;
    numChannels = channels;
    delayLine = SampleSignal(channels, order, Sample(0));
    states.assign(static_cast<std::size_t>(channels), nullptr);
    buffers.assign(static_cast<std::size_t>(channels), nullptr);

    int bytes = 0;
    Kernels<Sample>::getStateSize(order, &bytes);
    const auto taps = getIppTaps(coefficients);
    for (int channel = 0; channel < channels; ++channel)
    {
        const auto index = static_cast<std::size_t>(channel);
        buffers[index] = ippsMalloc_8u(bytes);
        Kernels<Sample>::initialize(&states[index], taps.data(), order, delayLine.getChannelPtr(channel),
                                    buffers[index]);
    }
}

template <typename Sample>
void IirFilterStates<Sample>::freeBuffers()
{
    for (auto* buffer : buffers)
        ippsFree(buffer);
    buffers.clear();
    states.clear();
}

template <typename Sample>
std::vector<Sample> IirFilterStates<Sample>::getIppTaps(const IirCoefficients& newCoefficients)
{
    const auto narrow = [](double tap) { return static_cast<Sample>(tap); };
    std::vector<Sample> taps(2 * newCoefficients.b.size());
    const auto denominator =
        std::transform(newCoefficients.b.begin(), newCoefficients.b.end(), taps.begin(), narrow);
    std::transform(newCoefficients.a.begin(), newCoefficients.a.end(), denominator, narrow);
    return taps;
}

template class IirFilterStates<float>;
template class IirFilterStates<double>;

//==============================================================================

void IirFilter32::process(const Signal32& input, Signal32& output)
{
    for (int channel = 0; channel < numChannels; ++channel)
    {
        // Taken first: if output is input and has other owners, the next line moves it to memory of its own.
        const auto* source = input.getChannelPtr(channel);
        processChannel(channel, source, output.getWriteChannelPtr(channel), input.numSamples);
    }
}

void IirFilter32::reset()
{
    for (auto* state : states)
        ippsIIRSetDlyLine_32f(state, nullptr);
}

//==============================================================================

Signal64 IirFilter64::process(const Signal64& input)
{
    Signal64 output(numChannels, input.numSamples);
    for (int channel = 0; channel < numChannels; ++channel)
        processChannel(channel, input.getChannelPtr(channel), output.getWriteChannelPtr(channel),
                       input.numSamples);
    return output;
}

} // namespace vesk::audio
