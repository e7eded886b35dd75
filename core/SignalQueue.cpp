#include "core/SignalQueue.h"

#include "core/VectorOps.h"
#include "core/kernels.h"

#include <algorithm>
#include <cassert>

namespace vesk::audio
{

template <typename S>
void SignalQueue<S>::add(const S& block)
{
    if (block.data == nullptr || block.numSamples == 0)
        return;
    if (numChannels == -1)
        numChannels = block.numChannels;
    if (block.numSamples < 0)
        return;
    blocks.push_back(block);
    numSamples += block.numSamples;
}

template <typename S>
template <typename Consume>
void SignalQueue<S>::takeFromFront(int length, Consume consume)
{
    if (length <= 0)
        return;
    assert(numSamples >= length);

    int done = 0;
    while (done < length)
    {
        const S& oldest = blocks.front();
        const int available = oldest.numSamples - readOffset;
        const int count = std::min(available, length - done);
        consume(oldest, readOffset, done, count);

        done += count;
        readOffset += count;
        if (count == available)
        {
            blocks.pop_front();
            readOffset = 0;
        }
    }
    numSamples -= length;
}

template <typename S>
void SignalQueue<S>::get(S& destination)
{
    takeFromFront(destination.numSamples,
                  [&](const S& block, int from, int to, int count)
                  {
                      for (int channel = 0; channel < destination.numChannels; ++channel)
                          vo::copy(block.getChannelPtr(channel) + from,
                                   destination.getWriteChannelPtr(channel) + to, count);
                  });
}

template <typename S>
void SignalQueue<S>::getAdding(S& destination)
{
    takeFromFront(destination.numSamples,
                  [&](const S& block, int from, int to, int count)
                  {
                      for (int channel = 0; channel < destination.numChannels; ++channel)
                      {
                          auto* sum = destination.getWriteChannelPtr(channel) + to;
                          check(ippsAdd_32f(block.getChannelPtr(channel) + from, sum, sum, count));
                      }
                  });
}

template <typename S>
S SignalQueue<S>::get(int samples)
{
    if (numChannels <= 0)
        return {};
    S result(numChannels, samples);
    get(result);
    return result;
}

template <typename S>
void SignalQueue<S>::peek(int offset, S& destination) const
{
    const int length = destination.numSamples;
    std::int64_t position = static_cast<std::int64_t>(std::max(offset, 0)) + readOffset;
    int done = 0;
    for (const S& block : blocks)
    {
        if (done >= length)
            return;
        if (position >= block.numSamples)
        {
            position -= block.numSamples;
            continue;
        }
        const auto start = static_cast<int>(position);
        const int count = std::min(block.numSamples - start, length - done);
        for (int channel = 0; channel < destination.numChannels; ++channel)
            vo::copy(block.getChannelPtr(channel) + start, destination.getWriteChannelPtr(channel) + done,
                     count);
        done += count;
        position = 0;
    }
}

template <typename S>
S SignalQueue<S>::peek(int offset, int samples) const
{
    if (numChannels <= 0)
        return {};
    S result(numChannels, samples);
    peek(offset, result);
    return result;
}

template <typename S>
void SignalQueue<S>::skip(int samples)
{
    assert(numSamples >= samples);
    int remaining = samples;
    while (remaining > 0 && !blocks.empty())
    {
        const int available = blocks.front().numSamples - readOffset;
        if (available > remaining)
        {
            readOffset += remaining;
            break;
        }
        remaining -= available;
        blocks.pop_front();
        readOffset = 0;
    }
    numSamples -= samples;
}

template <typename S>
void SignalQueue<S>::clear()
{
    blocks.clear();
    numSamples = 0;
    readOffset = 0;
    numChannels = -1;
}

template class SignalQueue<Signal32>;

} // namespace vesk::audio
