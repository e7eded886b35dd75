#include "tests/realtime/AllocationCounter.h"

#include <cerrno>
#include <cstddef>

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

// What the C library's functions are called behind their public names.
extern "C"
{
    void* __libc_malloc(std::size_t bytes);
    void* __libc_calloc(std::size_t count, std::size_t bytes);
    void* __libc_realloc(void* block, std::size_t bytes);
    void* __libc_memalign(std::size_t alignment, std::size_t bytes);
    void __libc_free(void* block);
}

namespace
{
constinit thread_local bool watching = false;
constinit thread_local int calls = 0;

void count() noexcept
{
    if (watching)
        ++calls;
}

void* allocateAligned(std::size_t alignment, std::size_t bytes) noexcept
{
    count();
    return __libc_memalign(alignment, bytes);
}
} // namespace

AllocationCounter::AllocationCounter() noexcept
{
    calls = 0;
    watching = true;
}

AllocationCounter::~AllocationCounter() { watching = false; }

int AllocationCounter::getCalls() const noexcept { return calls; }

#define AMBREL_REPLACES extern "C" __attribute__((visibility("default")))

AMBREL_REPLACES void* malloc(std::size_t bytes)
{
    count();
    return __libc_malloc(bytes);
}

AMBREL_REPLACES void* calloc(std::size_t number, std::size_t bytes)
{
    count();
    return __libc_calloc(number, bytes);
}

AMBREL_REPLACES void* realloc(void* block, std::size_t bytes)
{
    count();
    return __libc_realloc(block, bytes);
}

AMBREL_REPLACES void free(void* block)
{
    if (block != nullptr)
        count();
    __libc_free(block);
}

AMBREL_REPLACES void* memalign(std::size_t alignment, std::size_t bytes)
{
    return allocateAligned(alignment, bytes);
}

AMBREL_REPLACES void* aligned_alloc(std::size_t alignment, std::size_t bytes)
{
    return allocateAligned(alignment, bytes);
}

AMBREL_REPLACES int posix_memalign(void** block, std::size_t alignment, std::size_t bytes)
{
    *block = allocateAligned(alignment, bytes);
    return *block != nullptr ? 0 : ENOMEM;
}

AMBREL_REPLACES void* mmap(void* address, std::size_t bytes, int protection, int flags, int file,
                           off_t offset)
{
    count();
    return reinterpret_cast<void*>(syscall(SYS_mmap, address, bytes, protection, flags, file, offset));
}

AMBREL_REPLACES int munmap(void* address, std::size_t bytes)
{
    count();
    return static_cast<int>(syscall(SYS_munmap, address, bytes));
}
