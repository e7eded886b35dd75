#include "core/MemoryPool.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <limits>
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
#elif __has_include(<sys/mman.h>)
#define AMBREL_MAPS_LARGE_BLOCKS 1
#include <sys/mman.h>
#endif

namespace vesk::audio
{

namespace
{

constexpr std::size_t alignment = 64;

class Store;

/** Stands before each block, so that a block can be given back by its address alone. */
struct alignas(alignment) Header
{
    std::size_t sizeClass;
    Store* home;       ///< null if the block is not pooled
    std::size_t bytes; ///< with the header
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
    /** @param slotCount  a power of two, or 0 for a shelf that keeps nothing */
    constexpr Shelf(std::atomic<void*>* slotMemory, std::size_t slotCount)
        : slots(slotMemory), mask(slotCount - 1)
    {
    }

    /** Null if no block is idle. */
    void* take() noexcept { return takeWithin(std::min(mask + 1, longestSearch)); }

    /** False if all slots are in use. */
    bool give(void* block) noexcept
    {
        auto index = top.load(std::memory_order_relaxed) + 1;
        for (std::size_t step = 0; step < std::min(mask + 1, longestSearch); ++step, ++index)
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

    /** Looks into every slot. */
    void* takeAny() noexcept { return takeWithin(mask + 1); }

    std::size_t countIdle() const noexcept
    {
        return static_cast<std::size_t>(
            std::count_if(slots, slots + mask + 1,
                          [](const auto& slot) { return slot.load(std::memory_order_relaxed) != nullptr; }));
    }

private:
    /** Threads that meet leave the top a few slots off, so a block that is there is near. */
    static constexpr std::size_t longestSearch = 512;

    void* takeWithin(std::size_t steps) noexcept
    {
        auto index = top.load(std::memory_order_relaxed);
        for (std::size_t step = 0; step < steps; ++step, --index)
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

    std::atomic<void*>* slots;
    std::size_t mask;
    std::atomic<std::size_t> top{0};
};

/** How much of a size class a store keeps idle: as many blocks as these bytes hold, but within the two counts. */
struct Bounds
{
    std::size_t bytes;
    std::size_t fewest;
    std::size_t most;
};

/** A power of two or 0. */
constexpr std::size_t getSlotCount(std::size_t sizeClass, Bounds bounds)
{
    return std::clamp(std::bit_floor(bounds.bytes / getClassBytes(sizeClass)), bounds.fewest, bounds.most);
}

/** The slots of all shelves of a store. Memory that is never touched costs nothing. */
template <Bounds bounds>
struct Slots
{
    static constexpr std::size_t getFirst(std::size_t sizeClass)
    {
        std::size_t first = 0;
        for (std::size_t smaller = 0; smaller < sizeClass; ++smaller)
            first += getSlotCount(smaller, bounds);
        return first;
    }

    std::array<std::atomic<void*>, getFirst(numSizeClasses)> memory{};
};

/** Idle blocks of all sizes. */
class Store
{
public:
    template <Bounds bounds>
    constexpr explicit Store(Slots<bounds>& slots) : Store(slots, std::make_index_sequence<numSizeClasses>())
    {
    }

    std::array<Shelf, numSizeClasses> shelves;

private:
    template <Bounds bounds, std::size_t... sizeClasses>
    constexpr Store(Slots<bounds>& slots, std::index_sequence<sizeClasses...>)
        : shelves{Shelf(slots.memory.data() + Slots<bounds>::getFirst(sizeClasses),
                        getSlotCount(sizeClasses, bounds))...}
    {
    }
};

// Outside of streams the large blocks serve the making of responses, which the system's allocator does not hold up.
constinit Slots<Bounds{.bytes = std::size_t{128} << 10, .fewest = 0, .most = 512}> generalSlots;

// A stream of single samples keeps half a second of pre-delay as tens of thousands of blocks, and a change of
// the block length hands all of them back.
constinit Slots<Bounds{.bytes = std::size_t{16} << 20, .fewest = 4, .most = 32768}> streamSlots;

// A stream leaves the system's allocator alone, even for what others took from it: they find such blocks here.
constinit Slots<Bounds{.bytes = std::size_t{16} << 20, .fewest = 4, .most = 512}> returnedSlots;

constinit Store generalStore(generalSlots);
constinit Store streamStore(streamSlots);
constinit Store returnedStore(returnedSlots);

constexpr std::array<Store*, 3> allStores = {&generalStore, &streamStore, &returnedStore};

constinit std::atomic<int> leases{0};

/** Where this thread takes blocks from. */
constinit thread_local Store* currentStore = &generalStore;

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

#ifdef AMBREL_MAPS_LARGE_BLOCKS
/** From here on blocks are pages of their own, and go back to the system at once. On the heap they leave holes in which
    the host's small objects settle, so that the process grows with every change of the room. The C library maps large
    blocks, too, but raises its limit with use. */
constexpr std::size_t smallestMapping = std::size_t{256} << 10;

void* takePages(std::size_t bytes) noexcept
{
    auto* pages = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pages != MAP_FAILED ? pages : nullptr;
}

void givePages(void* pages, std::size_t bytes) noexcept { munmap(pages, bytes); }
#else
constexpr std::size_t smallestMapping = std::numeric_limits<std::size_t>::max();

void* takePages(std::size_t) noexcept { return nullptr; }
void givePages(void*, std::size_t) noexcept {}
#endif

void* takeFromSystem(std::size_t bytes, std::size_t sizeClass, Store* home) noexcept
{
    auto* memory = bytes >= smallestMapping
                       ? takePages(bytes)
                       : ::operator new(bytes, std::align_val_t(alignment), std::nothrow);
    if (memory == nullptr)
        return nullptr;
    return new (memory) Header{sizeClass, home, bytes} + 1;
}

void giveToSystem(void* block) noexcept
{
    setPoisoned(block, false);
    auto* header = static_cast<Header*>(block) - 1;
    if (header->bytes >= smallestMapping)
        givePages(header, header->bytes);
    else
        ::operator delete(header, std::align_val_t(alignment));
}

/** What streams need swings by a few blocks, as frames and queues of several lengths come round together: beyond the
    one they run short of, this many more are put by. */
constexpr std::size_t getSpareCount(std::size_t sizeClass)
{
    constexpr std::size_t spareBytes = std::size_t{32} << 10;
    constexpr std::size_t most = 8;
    return std::min(spareBytes / getClassBytes(sizeClass), most);
}

void putSparesBy(std::size_t sizeClass) noexcept
{
    for (std::size_t count = getSpareCount(sizeClass); count > 0; --count)
    {
        auto* spare = takeFromSystem(getClassBytes(sizeClass), sizeClass, &streamStore);
        if (spare == nullptr)
            return;
        setPoisoned(spare, true);
        if (!streamStore.shelves[sizeClass].give(spare))
        {
            giveToSystem(spare);
            return;
        }
    }
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
        return takeFromSystem(total, unpooled, nullptr);

    auto* store = currentStore;
    void* block = store->shelves[sizeClass].take();
    if (block == nullptr && store == &generalStore)
        block = returnedStore.shelves[sizeClass].take();
    if (block != nullptr)
    {
        setPoisoned(block, false);
        return block;
    }
    if (store == &streamStore)
        putSparesBy(sizeClass);
    return takeFromSystem(getClassBytes(sizeClass), sizeClass, store);
}

void MemoryPool::release(void* block) noexcept
{
    if (block == nullptr)
        return;
    const auto& header = *(static_cast<Header*>(block) - 1);
    if (header.home == nullptr)
    {
        giveToSystem(block);
        return;
    }
    setPoisoned(block, true);
    const bool isForeign = header.home != currentStore && currentStore == &streamStore;
    auto& store = isForeign ? returnedStore : *header.home;
    if (!store.shelves[header.sizeClass].give(block))
        giveToSystem(block);
}

void MemoryPool::trim() noexcept
{
    for (auto* store : allStores)
        for (auto& shelf : store->shelves)
            while (auto* block = shelf.takeAny())
                giveToSystem(block);
}

std::size_t MemoryPool::getIdleBytes() noexcept
{
    std::size_t bytes = 0;
    for (std::size_t sizeClass = 0; sizeClass < numSizeClasses; ++sizeClass)
        for (const auto* store : allStores)
            bytes += store->shelves[sizeClass].countIdle() * getClassBytes(sizeClass);
    return bytes;
}

StreamScope::StreamScope() noexcept : wasInStream(currentStore == &streamStore)
{
    currentStore = &streamStore;
}

StreamScope::~StreamScope() { currentStore = wasInStream ? &streamStore : &generalStore; }

PoolLease::PoolLease() noexcept { leases.fetch_add(1, std::memory_order_relaxed); }

PoolLease::~PoolLease()
{
    if (leases.fetch_sub(1, std::memory_order_acq_rel) == 1)
        MemoryPool::trim();
}

} // namespace vesk::audio
