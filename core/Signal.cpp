#include "core/Signal.h"

#include "core/VectorOps.h"
#include "core/kernels.h"

#include <algorithm>
#include <cassert>
#include <type_traits>
#include <utility>

namespace vesk::audio
{

namespace
{
constexpr std::size_t cacheLine = 64;

constexpr std::size_t roundUpToCacheLine(std::size_t bytes)
{
    return (bytes + cacheLine - 1) / cacheLine * cacheLine;
}

template <typename T>
std::shared_ptr<SignalData<T>> makeData(int channels, int samples)
{
    return std::allocate_shared<SignalData<T>>(PoolAllocator<SignalData<T>>(), channels, samples);
}

void fill(float value, float* dst, int n) { check(ippsSet_32f(value, dst, n)); }
void fill(double value, double* dst, int n) { check(ippsSet_64f(value, dst, n)); }

template <typename T>
bool isWithin([[maybe_unused]] const Signal<T>& inner, [[maybe_unused]] const Signal<T>& outer)
{
    return inner.numSamples < 1 ||
           (outer.numChannels >= inner.numChannels && outer.numSamples >= inner.numSamples);
}
} // namespace

//==============================================================================

template <typename T>
SignalData<T>::SignalData(int channelCount, int sampleCount)
    : numSamples(sampleCount), numChannels(channelCount), allocatedSamples(sampleCount)
{
    const auto count = static_cast<std::size_t>(std::max(channelCount, 0));
    const auto samples = static_cast<std::size_t>(std::max(sampleCount, 0));
    if (count == 0)
        return;

    // An odd number of lines from channel to channel: at a distance of whole pages loads of one channel would
    // wait for stores to the other.
    const auto pointerBytes = roundUpToCacheLine(count * sizeof(T*));
    const auto channelBytes = (roundUpToCacheLine(samples * sizeof(T)) / cacheLine | 1) * cacheLine;
    auto* block =
        PoolAllocator<std::byte>().allocate(pointerBytes + (samples > 0 ? count * channelBytes : 0));
    channels = {new (block) T*[count](), count};
    if (samples > 0)
        for (std::size_t channel = 0; channel < count; ++channel)
            channels[channel] = reinterpret_cast<T*>(block + pointerBytes + channel * channelBytes);
}

template <typename T>
SignalData<T>::SignalData(const SignalData& other) : SignalData(other.numChannels, other.numSamples)
{
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
    {
        if constexpr (std::is_same_v<T, std::complex<double>>)
            std::copy_n(other.channels[channel], numSamples, channels[channel]);
        else
            vo::copy(other.channels[channel], channels[channel], numSamples);
    }
}

template <typename T>
SignalData<T>::~SignalData()
{
    MemoryPool::release(channels.data());
}

//==============================================================================

template <typename T>
Signal<T>::Signal(int channels, int samples)
    : numChannels(channels), numSamples(samples), data(makeData<T>(channels, samples))
{
}

template <typename T>
Signal<T>::Signal(int channels, int samples, T value) : Signal(channels, samples)
{
    if constexpr (std::is_floating_point_v<T>)
    {
        if (samples > 0)
            for (auto* channel : data->channels)
                fill(value, channel, samples);
    }
    else
    {
        if (samples > 0)
            for (auto* channel : data->channels)
                std::fill_n(channel, samples, value);
    }
}

template <typename T>
void Signal<T>::cloneData()
{
    data = std::allocate_shared<SignalData<T>>(PoolAllocator<SignalData<T>>(), std::as_const(*data));
}

template <typename T>
void Signal<T>::ensureDimensions(int channels, int samples)
{
    if (data == nullptr || data->numChannels < channels || data->numSamples < samples)
        data = makeData<T>(channels, samples);
    numChannels = channels;
    numSamples = samples;
}

template <typename T>
Signal<T>& Signal<T>::operator*=(float gain)
{
    if constexpr (std::is_same_v<T, float>)
        for (int channel = 0; channel < numChannels && numSamples > 0; ++channel)
        {
            const auto* source = getChannelPtr(channel);
            check(ippsMulC_32f(source, gain, getWriteChannelPtr(channel), numSamples));
        }
    return *this;
}

template <typename T>
Signal<T>& Signal<T>::operator+=(const Signal& other)
{
    assert(isWithin(*this, other));
    if constexpr (std::is_same_v<T, float>)
        for (int channel = 0; channel < numChannels && numSamples > 0; ++channel)
        {
            const auto* source = getChannelPtr(channel);
            const auto* added = other.getChannelPtr(channel);
            check(ippsAdd_32f(source, added, getWriteChannelPtr(channel), numSamples));
        }
    return *this;
}

template <typename T>
Signal<T> Signal<T>::operator+(const Signal& other) const
{
    assert(isWithin(*this, other));
    Signal result(numChannels, numSamples);
    if constexpr (std::is_same_v<T, float>)
        for (int channel = 0; channel < numChannels && numSamples > 0; ++channel)
            check(ippsAdd_32f(getChannelPtr(channel), other.getChannelPtr(channel),
                              result.getWriteChannelPtr(channel), numSamples));
    return result;
}

template <typename T>
Signal<T> Signal<T>::operator*(const Signal& other) const
{
    assert(isWithin(*this, other));
    Signal result(numChannels, numSamples);
    if constexpr (std::is_same_v<T, float>)
        for (int channel = 0; channel < numChannels && numSamples > 0; ++channel)
            check(ippsMul_32f(getChannelPtr(channel), other.getChannelPtr(channel),
                              result.getWriteChannelPtr(channel), numSamples));
    return result;
}

template <typename T>
Signal<T> Signal<T>::concatenate(const Signal& first, const Signal& second)
{
    Signal result(first.numChannels, first.numSamples + second.numSamples);
    if constexpr (!std::is_same_v<T, std::complex<double>>)
        for (int channel = 0; channel < first.numChannels; ++channel)
        {
            auto* destination = result.getWriteChannelPtr(channel);
            if (first.numSamples > 0)
                vo::copy(first.getChannelPtr(channel), destination, first.numSamples);
            if (second.numSamples > 0)
                vo::copy(second.getChannelPtr(channel), destination + first.numSamples, second.numSamples);
        }
    return result;
}

Signal<float> operator*(float gain, const Signal<float>& signal)
{
    Signal<float> result(signal.numChannels, signal.numSamples);
    for (int channel = 0; channel < signal.numChannels && signal.numSamples > 0; ++channel)
        check(ippsMulC_32f(signal.getChannelPtr(channel), gain, result.getWriteChannelPtr(channel),
                           signal.numSamples));
    return result;
}

//==============================================================================

Signal64 Signal32::toSignal64() const
{
    Signal64 result(numChannels, numSamples);
    for (int channel = 0; channel < numChannels && numSamples > 0; ++channel)
        check(ippsConvert_32f64f(getChannelPtr(channel), result.getWriteChannelPtr(channel), numSamples));
    return result;
}

Signal32 Signal64::toSignal32() const
{
    Signal32 result(numChannels, numSamples);
    for (int channel = 0; channel < numChannels && numSamples > 0; ++channel)
        check(ippsConvert_64f32f(getChannelPtr(channel), result.getWriteChannelPtr(channel), numSamples));
    return result;
}

ComplexSignal32::ComplexSignal32(const Signal<float>& magnitude, const Signal<float>& phase)
    : Signal<std::complex<float>>(magnitude.numChannels, magnitude.numSamples)
{
    assert(isWithin(magnitude, phase));
    for (int channel = 0; channel < numChannels && numSamples > 0; ++channel)
        check(ippsPolarToCart_32fc(magnitude.getChannelPtr(channel), phase.getChannelPtr(channel),
                                   getWriteChannelPtr(channel), numSamples));
}

template struct SignalData<float>;
template struct SignalData<double>;
template struct SignalData<std::complex<float>>;
template struct SignalData<std::complex<double>>;
template class Signal<float>;
template class Signal<double>;
template class Signal<std::complex<float>>;
template class Signal<std::complex<double>>;

} // namespace vesk::audio
