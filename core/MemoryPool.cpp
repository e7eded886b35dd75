#include "core/MemoryPool.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <new>
#include <utility>

#if defined(__SANITIZE_ADDRESS__)
#define AMBREL_POISONS_IDLE_BLOCKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define AMBREL_POISONS_IDLE_BLOCKS 1
#endif
#endif
#ifdef AMBREL_POISONS_IDLE_BLOCKS
#include <sanitizer/asan_interface.h>
#endif

namespace vesk::audio
{

namespace
{

constexpr std::size_t alignment = 64;

/** Stands before each block, so that a block can be given back by its address alone. */
struct alignas(alignment) Header
{
    std::size_t sizeClass;
};

//==============================================================================
// Size classes: four for each doubling, from 128 bytes with header up to 32 MiB. Larger blocks come from the
// system and go back to it.

constexpr int smallestExponent = 7;
constexpr int largestExponent = 25;
constexpr std::size_t classesPerDoubling = 4;
constexpr std::size_t numSizeClasses = (largestExponent - smallestExponent) * classesPerDoubling + 1;
constexpr std::size_t unpooled = numSizeClasses;

constexpr std::size_t getClassBytes(std::size_t sizeClass)
{
    const auto octave = std::size_t{1} << (smallestExponent + sizeClass / classesPerDoubling);
    return octave + octave / classesPerDoubling * (sizeClass % classesPerDoubling);
}

constexpr std::size_t findSizeClass(std::size_t bytes)
{
    constexpr auto smallest = getClassBytes(0);
    if (bytes <= smallest)
        return 0;
    const auto exponent = static_cast<std::size_t>(std::bit_width(bytes - 1)) - 1;
    const auto octave = std::size_t{1} << exponent;
    const auto step = octave / classesPerDoubling;
    const auto withinOctave = (bytes - octave + step - 1) / step;
    return std::min((exponent - smallestExponent) * classesPerDoubling + withinOctave, unpooled);
}

static_assert(findSizeClass(128) == 0 && findSizeClass(129) == 1 && findSizeClass(160) == 1);
static_assert(findSizeClass(161) == 2 && findSizeClass(256) == classesPerDoubling);
static_assert(findSizeClass(std::size_t{1} << largestExponent) == numSizeClasses - 1);
static_assert(findSizeClass((std::size_t{1} << largestExponent) + 1) == unpooled);

//==============================================================================

/** The idle blocks of one size class, in a ring of slots that serves as a stack.

    A slot is either null or owns a block. Taking swaps a null in, giving back swaps a block in; whoever wins
    the swap owns the block, so there is nothing to lock and no stale pointer is ever followed. The index of
    the top is a hint only: a slot that turns out otherwise sends the search on around the ring. */
class Shelf
{
public:
    static constexpr std::size_t maxSlots = 512;

    /** @param slotCount  slots in use, a power of two up to maxSlots */
    constexpr explicit Shelf(std::size_t slotCount) : mask(slotCount - 1) {}

    /** Null if no block is idle. */
    void* take() noexcept
    {
        auto index = top.load(std::memory_order_relaxed);
        for (std::size_t step = 0; step <= mask; ++step, --index)
        {
            auto& slot = slots[index & mask];
            if (slot.load(std::memory_order_relaxed) == nullptr)
                continue;
            if (auto* block = slot.exchange(nullptr, std::memory_order_acquire))
            {
                top.store(index - 1, std::memory_order_relaxed);
                return block;
            }
        }
        return nullptr;
    }

    /** False if all slots are in use. */
    bool give(void* block) noexcept
    {
        auto index = top.load(std::memory_order_relaxed) + 1;
        for (std::size_t step = 0; step <= mask; ++step, ++index)
        {
            auto& slot = slots[index & mask];
            void* expected = nullptr;
            if (slot.load(std::memory_order_relaxed) == nullptr &&
                slot.compare_exchange_strong(expected, block, std::memory_order_release,
                                             std::memory_order_relaxed))
            {
                top.store(index, std::memory_order_relaxed);
                return true;
            }
        }
        return false;
    }

    std::size_t countIdle() const noexcept
    {
        return static_cast<std::size_t>(
            std::count_if(slots.begin(), slots.end(),
                          [](const auto& slot) { return slot.load(std::memory_order_relaxed) != nullptr; }));
    }

private:
    std::size_t mask;
    std::atomic<std::size_t> top{0};
    std::array<std::atomic<void*>, maxSlots> slots{};
};

/** How many idle blocks a size class may keep, so that the pool as a whole stays bounded. */
constexpr std::size_t getSlotCount(std::size_t sizeClass)
{
    constexpr std::size_t largestIdleBytes = std::size_t{16} << 20;
    constexpr std::size_t fewest = 4;
    return std::clamp(std::bit_floor(largestIdleBytes / getClassBytes(sizeClass)), fewest, Shelf::maxSlots);
}

template <std::size_t... sizeClasses>
constexpr std::array<Shelf, sizeof...(sizeClasses)> makeShelves(std::index_sequence<sizeClasses...>)
{
    return {Shelf(getSlotCount(sizeClasses))...};
}

constinit std::array<Shelf, numSizeClasses> shelves = makeShelves(std::make_index_sequence<numSizeClasses>());
constinit std::atomic<int> leases{0};

void setPoisoned([[maybe_unused]] void* block, [[maybe_unused]] bool poisoned) noexcept
{
#ifdef AMBREL_POISONS_IDLE_BLOCKS
    auto* header = static_cast<Header*>(block) - 1;
    if (header->sizeClass == unpooled)
        return;
    const auto bytes = getClassBytes(header->sizeClass) - sizeof(Header);
    if (poisoned)
        __asan_poison_memory_region(block, bytes);
    else
        __asan_unpoison_memory_region(block, bytes);
#endif
}

void* takeFromSystem(std::size_t bytes, std::size_t sizeClass) noexcept
{
    auto* memory = ::operator new(bytes, std::align_val_t(alignment), std::nothrow);
    if (memory == nullptr)
        return nullptr;
    return new (memory) Header{sizeClass} + 1;
}

void giveToSystem(void* block) noexcept
{
    setPoisoned(block, false);
    ::operator delete(static_cast<Header*>(block) - 1, std::align_val_t(alignment));
}

} // namespace

//==============================================================================

void* MemoryPool::allocate(std::size_t bytes) noexcept
{
    constexpr auto largest = static_cast<std::size_t>(-1) / 2;
    if (bytes == 0 || bytes > largest)
        return nullptr;

    const auto total = bytes + sizeof(Header);
    const auto sizeClass = findSizeClass(total);
    if (sizeClass == unpooled)
        return takeFromSystem(total, unpooled);

    if (auto* block = shelves[sizeClass].take())
    {
        setPoisoned(block, false);
        return block;
    }
    return takeFromSystem(getClassBytes(sizeClass), sizeClass);
}

void MemoryPool::release(void* block) noexcept
{
    if (block == nullptr)
        return;
    const auto sizeClass = (static_cast<Header*>(block) - 1)->sizeClass;
    if (sizeClass == unpooled)
    {
        giveToSystem(block);
        return;
    }
    setPoisoned(block, true);
    if (!shelves[sizeClass].give(block))
        giveToSystem(block);
}

void MemoryPool::trim() noexcept
{
    for (auto& shelf : shelves)
        while (auto* block = shelf.take())
            giveToSystem(block);
}

std::size_t MemoryPool::getIdleBytes() noexcept
{
    std::size_t bytes = 0;
    for (std::size_t sizeClass = 0; sizeClass < numSizeClasses; ++sizeClass)
        bytes += shelves[sizeClass].countIdle() * getClassBytes(sizeClass);
    return bytes;
}

PoolLease::PoolLease() noexcept { leases.fetch_add(1, std::memory_order_relaxed); }

PoolLease::~PoolLease()
{
    if (leases.fetch_sub(1, std::memory_order_acq_rel) == 1)
        MemoryPool::trim();
}

} // namespace vesk::audio
