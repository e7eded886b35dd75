#include "core/MemoryPool.h"
#include "core/kernels.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <random>
#include <set>
#include <thread>

namespace vesk::audio
{
namespace
{

bool isAligned(const void* block) { return reinterpret_cast<std::uintptr_t>(block) % 64 == 0; }

TEST(MemoryPool, GivesAlignedBlocksThatHoldWhatWasAskedFor)
{
    std::vector<std::size_t> sizes;
    for (std::size_t bytes = 1; bytes < 3000; bytes += 13)
        sizes.push_back(bytes);
    for (std::size_t power = 4096; power <= (std::size_t{48} << 20); power *= 2)
        sizes.insert(sizes.end(), {power - 1, power, power + 1});

    // All at once, each filled from end to end: neighbours would overwrite each other.
    std::vector<std::uint8_t*> blocks;
    for (std::size_t i = 0; i < sizes.size(); ++i)
    {
        blocks.push_back(static_cast<std::uint8_t*>(MemoryPool::allocate(sizes[i])));
        ASSERT_TRUE(blocks.back() != nullptr && isAligned(blocks.back())) << sizes[i];
        std::memset(blocks.back(), static_cast<int>(i % 251), sizes[i]);
    }
    for (std::size_t i = 0; i < sizes.size(); ++i)
    {
        auto* end = blocks[i] + sizes[i];
        ASSERT_EQ(std::find_if(blocks[i], end, [=](auto byte) { return byte != i % 251; }), end);
        MemoryPool::release(blocks[i]);
    }
    MemoryPool::trim();
}

TEST(MemoryPool, AsksForNothingAndTooMuch)
{
    for (const std::size_t bytes : {std::size_t{0}, SIZE_MAX})
        EXPECT_EQ(MemoryPool::allocate(bytes), nullptr);
    for (const int bytes : {0, -1})
        EXPECT_TRUE(ippMalloc(bytes) == nullptr && ippsMalloc_8u(bytes) == nullptr);
    EXPECT_THROW(PoolAllocator<double>().allocate(SIZE_MAX / 4), std::bad_alloc);
    MemoryPool::release(nullptr);
    ippFree(nullptr);
    ippsFree(nullptr);
}

TEST(MemoryPool, HandsTheSameBlocksOutAgainWhileALeaseLives)
{
    MemoryPool::trim();
    EXPECT_EQ(MemoryPool::getIdleBytes(), 0u);
    {
        const PoolLease lease;
        const StreamScope stream; // others keep small blocks alone
        for (const std::size_t bytes : {40u, 2048u, 65536u, 5u << 20})
        {
            constexpr int inUse = 3;
            std::set<void*> seen;
            for (int round = 0; round < 100; ++round)
            {
                const PoolLease second = lease;
                void* blocks[inUse];
                for (auto& block : blocks)
                    seen.insert(block = MemoryPool::allocate(bytes));
                for (auto* block : blocks)
                    MemoryPool::release(block);
            }
            EXPECT_EQ(seen.size(), std::size_t{inUse}) << bytes;
            EXPECT_GE(MemoryPool::getIdleBytes(), inUse * bytes);
        }
    }
    EXPECT_EQ(MemoryPool::getIdleBytes(), 0u);
}

TEST(MemoryPool, StreamsHaveAStoreOfTheirOwn)
{
    const PoolLease lease;
    MemoryPool::trim();
    void* streams = nullptr;
    {
        const StreamScope scope;
        const StreamScope nested;
        MemoryPool::release(streams = MemoryPool::allocate(1000));
    }
    auto* other = MemoryPool::allocate(1000);
    EXPECT_NE(other, streams);
    {
        const StreamScope scope;
        {
            const StreamScope nested;
        }
        MemoryPool::release(other);
        auto* again = MemoryPool::allocate(1000);
        EXPECT_EQ(again, streams) << "not what other threads have given back";
        std::thread([again] { MemoryPool::release(again); }).join();
        EXPECT_EQ(MemoryPool::allocate(1000), again) << "back home, whoever gives it back";
        MemoryPool::release(again);
    }
    MemoryPool::release(other = MemoryPool::allocate(1000));
    EXPECT_NE(other, streams);
}

TEST(MemoryPool, KeepsABoundedAmount)
{
    const PoolLease lease;
    constexpr std::size_t bound = std::size_t{160} << 20;
    for (const std::size_t bytes : {100u, 4000u, 1u << 20, 30u << 20})
    {
        std::vector<void*> blocks;
        for (std::size_t total = 0; total < (std::size_t{400} << 20) && blocks.size() < 5000; total += bytes)
            blocks.push_back(MemoryPool::allocate(bytes));
        for (auto* block : blocks)
            MemoryPool::release(block);
        EXPECT_LE(MemoryPool::getIdleBytes(), bound) << bytes;
        MemoryPool::trim();
    }
}

TEST(MemoryPool, ServesManyThreadsThatFreeEachOthersBlocks)
{
    const PoolLease lease;
    constexpr int numThreads = 4, rounds = 4000;
    constexpr std::size_t sizes[] = {64, 300, 2048, 4096 * 4};
    struct Parcel
    {
        std::uint8_t* block;
        std::size_t bytes;
        std::uint8_t stamp;
    };
    std::mutex mutex;
    std::vector<Parcel> inTransit;
    std::atomic<int> damaged{0};

    const auto work = [&](unsigned seed)
    {
        std::mt19937 random(seed);
        for (int round = 0; round < rounds; ++round)
        {
            const auto bytes = sizes[random() % std::size(sizes)];
            const auto stamp = static_cast<std::uint8_t>(random());
            Parcel parcel{static_cast<std::uint8_t*>(MemoryPool::allocate(bytes)), bytes, stamp};
            std::memset(parcel.block, stamp, bytes);
            {
                // Leave it to the others, and take one of theirs.
                const std::lock_guard lock(mutex);
                inTransit.push_back(parcel);
                std::swap(inTransit[random() % inTransit.size()], inTransit.back());
                if (inTransit.size() < 20)
                    continue;
                parcel = inTransit.back();
                inTransit.pop_back();
            }
            for (std::size_t i = 0; i < parcel.bytes; ++i)
                if (parcel.block[i] != parcel.stamp)
                    ++damaged;
            MemoryPool::release(parcel.block);
            if (round % 1000 == 999)
                MemoryPool::trim();
        }
    };
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < numThreads; ++i)
        threads.emplace_back(work, i);
    for (auto& thread : threads)
        thread.join();
    for (const auto& parcel : inTransit)
        MemoryPool::release(parcel.block);
    EXPECT_EQ(damaged, 0);
}

} // namespace
} // namespace vesk::audio
