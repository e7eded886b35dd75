#include "core/CircularBuffer.h"

#include "core/VectorOps.h"
#include "core/kernels.h"

#include <algorithm>
#include <cassert>

namespace vesk::audio
{

template <typename S>
void CircularBuffer<S>::add(const S& block)
{
    const int length = block.numSamples;
    if (numChannels == -1)
        numChannels = block.numChannels;

    if (length > maxBlockSize)
    {
        const int newMaximum = std::max(2 * maxBlockSize, length);
        resize(capacity + newMaximum - maxBlockSize);
        maxBlockSize = newMaximum;
    }

    if (buffer.data == nullptr || buffer.numSamples == 0)
        buffer = S(numChannels, capacity, 0.0f);

    const int upToEnd = std::min(length, capacity - writePosition);
    for (int channel = 0; channel < numChannels; ++channel)
    {
        const auto* source = block.getChannelPtr(channel);
        auto* ring = buffer.getWriteChannelPtr(channel);
        vo::copy(source, ring + writePosition, upToEnd);
        vo::copy(source + upToEnd, ring, length - upToEnd);
    }
    writePosition = (writePosition + length) % capacity;
}

template <typename S>
void CircularBuffer<S>::resize(int newCapacity)
{
    if (capacity < newCapacity && numChannels >= 1)
    {
        if (buffer.data == nullptr || buffer.numSamples == 0)
            buffer = S(numChannels, newCapacity, 0.0f);
        else
        {
            // The oldest samples follow the write position: they move to the end, and the gap before them
            // becomes silence of a still older past.
            S grown(numChannels, newCapacity);
            const int gap = newCapacity - capacity;
            for (int channel = 0; channel < numChannels; ++channel)
            {
                const auto* old = buffer.getChannelPtr(channel);
                auto* ring = grown.getWriteChannelPtr(channel);
                vo::copy(old, ring, writePosition);
                check(ippsSet_32f(0.0f, ring + writePosition, gap));
                vo::copy(old + writePosition, ring + writePosition + gap, capacity - writePosition);
            }
            buffer = grown;
        }
    }

    writePosition %= newCapacity;
    readPosition %= newCapacity;
    capacity = newCapacity;
}

template <typename S>
void CircularBuffer<S>::peek(int offset, S& destination) const
{
    assert(offset >= -capacity && destination.numSamples <= capacity);
    const int length = destination.numSamples;
    const int start = (offset + capacity + readPosition) % capacity;
    const int upToEnd = std::min(length, capacity - start);
    for (int channel = 0; channel < destination.numChannels; ++channel)
    {
        const auto* ring = buffer.getChannelPtr(channel);
        auto* target = destination.getWriteChannelPtr(channel);
        vo::copy(ring + start, target, upToEnd);
        vo::copy(ring, target + upToEnd, length - upToEnd);
    }
}

template <typename S>
S CircularBuffer<S>::peek(int offset, int samples) const
{
    if (numChannels <= 0)
        return {};
    S result(numChannels, samples);
    peek(offset, result);
    return result;
}

template <typename S>
const float* CircularBuffer<S>::find(int channel, int offset, int length) const
{
    assert(offset >= -capacity && length <= capacity);
    const int start = (offset + capacity + readPosition) % capacity;
    return start + length <= capacity ? buffer.getChannelPtr(channel) + start : nullptr;
}

template <typename S>
void CircularBuffer<S>::clear()
{
    buffer = S();
    writePosition = 0;
    readPosition = 0;
    numChannels = -1;
}

template class CircularBuffer<Signal32>;

} // namespace vesk::audio
