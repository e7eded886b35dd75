#include "core/Signal.h"

#include "core/VectorOps.h"
#include "core/kernels.h"

#include <algorithm>
#include <cassert>
#include <type_traits>

namespace vesk::audio
{

namespace
{
constexpr std::size_t cacheLine = 64;

constexpr std::size_t roundUpToCacheLine(std::size_t bytes)
{
    return (bytes + cacheLine - 1) / cacheLine * cacheLine;
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

/** What stands behind the object: the pointers, then channel after channel. */
template <typename T>
struct SignalData<T>::Layout
{
    Layout(int channelCount, int sampleCount)
        : numChannels(channelCount), numSamples(sampleCount),
          count(static_cast<std::size_t>(std::max(channelCount, 0))),
          pointerBytes(roundUpToCacheLine(count * sizeof(T*)))
    {
        // An odd number of lines from channel to channel: at a distance of whole pages loads of one channel would
        // wait for stores to the other.
        if (sampleCount > 0)
            channelBytes =
                (roundUpToCacheLine(static_cast<std::size_t>(sampleCount) * sizeof(T)) / cacheLine | 1) *
                cacheLine;
    }

    std::size_t getBytes() const { return pointerBytes + count * channelBytes; }

    int numChannels;
    int numSamples;
    std::size_t count;
    std::size_t pointerBytes;
    std::size_t channelBytes = 0;
};

/** Takes blocks that have room for so many bytes behind the object. */
template <typename T>
template <typename Object>
class SignalData<T>::Allocator
{
public:
    using value_type = Object;

    /** @param blockRoom  receives the room of the block that is taken. The copy that stays behind to give the block back
        has no more use for it. */
    Allocator(std::size_t bytes, std::byte*& blockRoom) : roomBytes(bytes), room(&blockRoom) {}

    template <typename Other>
    Allocator(const Allocator<Other>& other) : roomBytes(other.roomBytes), room(other.room)
    {
    }

    Object* allocate(std::size_t count)
    {
        const auto objectBytes = roundUpToCacheLine(count * sizeof(Object));
        auto* block = PoolAllocator<std::byte>().allocate(objectBytes + roomBytes);
        *room = block + objectBytes;
        return reinterpret_cast<Object*>(block);
    }

    void deallocate(Object* block, std::size_t) noexcept { MemoryPool::release(block); }

    bool operator==(const Allocator&) const noexcept { return true; }

private:
    template <typename Other>
    friend class Allocator;

    std::size_t roomBytes;
    std::byte** room;
};

template <typename T>
std::shared_ptr<SignalData<T>> SignalData<T>::create(int channelCount, int sampleCount)
{
    const Layout layout(channelCount, sampleCount);
    std::byte* room = nullptr;
    return std::allocate_shared<SignalData>(Allocator<SignalData>(layout.getBytes(), room), layout, room);
}

template <typename T>
SignalData<T>::SignalData(const Layout& layout, std::byte* const& room)
    : numSamples(layout.numSamples), numChannels(layout.numChannels), allocatedSamples(layout.numSamples)
{
    if (layout.count == 0)
        return;
    channels = {new (room) T*[layout.count](), layout.count};
    if (layout.channelBytes > 0)
        for (std::size_t channel = 0; channel < layout.count; ++channel)
            channels[channel] =
                reinterpret_cast<T*>(room + layout.pointerBytes + channel * layout.channelBytes);
}

template <typename T>
std::shared_ptr<SignalData<T>> SignalData<T>::clone() const
{
    auto copy = create(numChannels, numSamples);
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
    {
        if constexpr (std::is_same_v<T, std::complex<double>>)
            std::copy_n(channels[channel], numSamples, copy->channels[channel]);
        else
            vo::copy(channels[channel], copy->channels[channel], numSamples);
    }
    return copy;
}

//==============================================================================

template <typename T>
Signal<T>::Signal(int channels, int samples)
    : numChannels(channels), numSamples(samples), data(SignalData<T>::create(channels, samples))
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
    data = data->clone();
}

template <typename T>
void Signal<T>::ensureDimensions(int channels, int samples)
{
    if (data == nullptr || data->numChannels < channels || data->numSamples < samples)
        data = SignalData<T>::create(channels, samples);
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
