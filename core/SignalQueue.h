/**
    First-in-first-out of whole blocks, for a producer and a consumer with different block lengths.

    add() keeps a shared handle, no sample is copied: a block that is in a queue is frozen. get() and peek()
    hand out any number of samples across block borders.

        SignalQueue<Signal32> queue;
        queue.add(block);                    // 512 samples
        Signal32 first = queue.get(100);     // the oldest 100

    Asking for more than numSamples is a programming error (asserted in debug builds); peek alone stops at the
    end. Cost: add is a handle in a deque; peek walks the blocks from the nearer end. Thread: one at a time.
*/
#pragma once

#include "core/MemoryPool.h"
#include "core/Signal.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <utility>

namespace vesk::audio
{

template <typename S>
class SignalQueue
{
public:
    /** Stores a shared copy. A block without data or samples is ignored. The first block fixes numChannels. */
    void add(const S& block);

    /** Moves the oldest samples into destination, as many as it is long, for its channels. */
    void get(S& destination);

    /** As get, but adds the samples onto what destination holds. */
    void getAdding(S& destination);

    /** The oldest samples as a new signal; an empty signal if nothing has fixed the channel count. */
    S get(int samples);

    /** Copies without removing, from offset samples behind the front. A negative offset counts as 0. If the
        queue ends early the rest of destination stays as it was. */
    void peek(int offset, S& destination) const;
    void peek(S& destination) const { peek(0, destination); }
    S peek(int offset, int samples) const;
    S peek(int samples) const { return peek(0, samples); }

    /** Drops samples from the front. */
    void skip(int samples);

    /** Back to the state of a new queue. */
    void clear();

    std::int64_t numSamples = 0;            ///< waiting, for each channel
    std::deque<S, PoolAllocator<S>> blocks; ///< oldest first
    int readOffset = 0;                     ///< samples of the oldest block already taken
    int numChannels = -1;                   ///< -1 until the first block

private:
    /** Removes length samples from the front, handing each piece of a block to
        consume(block, start in the block, start in the result, count). */
    template <typename Consume>
    void takeFromFront(int length, Consume consume);

    std::pair<std::size_t, int> locate(std::int64_t offset) const;
};

extern template class SignalQueue<Signal32>;

} // namespace vesk::audio
