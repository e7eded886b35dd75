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
    auto [index, start] = locate(std::max(offset, 0));
    for (int done = 0; done < destination.numSamples && index < blocks.size(); ++index, start = 0)
    {
        const S& block = blocks[index];
        const int count = std::min(block.numSamples - start, destination.numSamples - done);
        for (int channel = 0; channel < destination.numChannels; ++channel)
            vo::copy(block.getChannelPtr(channel) + start, destination.getWriteChannelPtr(channel) + done,
                     count);
        done += count;
    }
}

/** Which block holds the sample that lies offset behind the front, and where in it. */
template <typename S>
std::pair<std::size_t, int> SignalQueue<S>::locate(std::int64_t offset) const
{
    if (offset >= numSamples)
        return {blocks.size(), 0};

    const std::int64_t position = offset + readOffset;
    std::size_t index = 0;
    std::int64_t start = 0;
    if (offset < numSamples / 2)
        while (start + blocks[index].numSamples <= position)
            start += blocks[index++].numSamples;
    else
    {
        index = blocks.size();
        start = numSamples + readOffset;
        while (start > position)
            start -= blocks[--index].numSamples;
    }
    return {index, static_cast<int>(position - start)};
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
