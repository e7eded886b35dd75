/**
    Ring of input history with random access around the current block.

    add() writes at writePosition. readPosition belongs to the owner: during a block it marks that block's
    first sample, so that offset 0 is the block's start and negative offsets are the past. After the block the
    owner moves it on:

        ring.add(block);
        ring.peek(-64, frame);               // the last 64 samples before the block, and on
        ring.readPosition = (ring.readPosition + block.numSamples) % ring.capacity;

    The ring does not know how full it is: a block overwrites what lies ahead of the write position. Thread:
    one at a time.
*/
#pragma once

#include "core/Signal.h"

namespace vesk::audio
{

template <typename S>
class CircularBuffer
{
public:
    /** Appends a block. One longer than maxBlockSize first grows the ring. */
    void add(const S& block);

    /** Changes the modulus. Growing keeps the history in order, with zeros before it; shrinking only wraps
        the positions and keeps the memory. Called between blocks, when both positions are equal. */
    void resize(int newCapacity);

    /** Copies destination's length, for its channels, from offset against readPosition; offset down to
        -capacity. */
    void peek(int offset, S& destination) const;
    S peek(int offset, int samples) const;

    /** Where these samples lie in the ring, as peek would copy them; null if they run across the ring's end.
        They stay until the next add. */
    const float* find(int channel, int offset, int length) const;

    /** Empties the ring: no memory, no channels, positions 0. capacity and maxBlockSize stay. */
    void clear();

    S buffer;
    int maxBlockSize = 4096; ///< largest block that add takes without growing; owners add it to their sizes
    int capacity = 4096;     ///< the modulus; may be less than buffer holds
    int writePosition = 0;
    int readPosition = 0;
    int numChannels = -1; ///< -1 until the first block
};

extern template class CircularBuffer<Signal32>;

} // namespace vesk::audio
