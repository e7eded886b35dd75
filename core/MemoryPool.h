/**
    The one source of sample memory, queue nodes and other small objects of the audio path.

    Blocks that are given back are kept by size class and handed out again, so that once a stream runs, no
    block of audio reaches the system allocator, although the code above makes and returns signals freely.
    ippMalloc and ippFree are its plain face; PoolAllocator lets standard containers and shared pointers use
    it.

    A thread that processes audio says so with a StreamScope. Streams draw on a store of their own: what they
    have given back is there for the next block, however much the other threads take meanwhile. Large blocks are
    kept for streams alone.

    Taking and giving back are lock-free and safe on any thread, also on another one than the block came from.
    What the pool keeps is bounded. While at least one PoolLease lives the kept blocks stay; when the last one
    goes, they return to the system.
*/
#pragma once

#include <cstddef>
#include <limits>
#include <new>

namespace vesk::audio
{

namespace MemoryPool
{
/** A block of at least bytes, aligned to 64. Null on exhaustion and for 0 bytes. */
void* allocate(std::size_t bytes) noexcept;

/** Gives a block of allocate back. Null is ignored. */
void release(void* block) noexcept;

/** Returns all kept blocks to the system. Thread: any. */
void trim() noexcept;

/** Bytes in kept blocks, for tests and reports. */
std::size_t getIdleBytes() noexcept;
} // namespace MemoryPool

/** Keeps the pool's idle blocks alive. An engine holds one for its lifetime. */
class PoolLease
{
public:
    PoolLease() noexcept;
    ~PoolLease();
    PoolLease(const PoolLease&) noexcept : PoolLease() {}
    PoolLease& operator=(const PoolLease&) noexcept { return *this; }
};

/** For as long as it lives, its thread takes blocks from the streams' store, and gives none to the system. Blocks go
    back to the store that they came from, on whatever thread; what a stream gives back of the other threads' waits
    for them. Scopes may nest. */
class StreamScope
{
public:
    StreamScope() noexcept;
    ~StreamScope();
    StreamScope(const StreamScope&) = delete;
    StreamScope& operator=(const StreamScope&) = delete;

private:
    const bool wasInStream;
};

/** Standard allocator over the pool. Throws std::bad_alloc on exhaustion. */
template <typename T>
struct PoolAllocator
{
    using value_type = T;

    PoolAllocator() noexcept = default;
    template <typename U>
    PoolAllocator(const PoolAllocator<U>&) noexcept
    {
    }

    T* allocate(std::size_t count)
    {
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(T))
            throw std::bad_alloc();
        if (auto* block = MemoryPool::allocate(count * sizeof(T)))
            return static_cast<T*>(block);
        throw std::bad_alloc();
    }

    void deallocate(T* block, std::size_t) noexcept { MemoryPool::release(block); }

    template <typename U>
    bool operator==(const PoolAllocator<U>&) const noexcept
    {
        return true;
    }
};

} // namespace vesk::audio
