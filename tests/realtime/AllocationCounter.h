/**
    Counts what a thread asks of the system's memory while it is being watched.

    Linked into a program, it stands before the C library's malloc, calloc, realloc, free and their aligned
    relatives, mmap and munmap, for the program and all its libraries; new and delete go through them. Threads that are not
    watched are not counted.

        AllocationCounter counter;
        plugIn.processBlock(buffer, midi);
        EXPECT_EQ(counter.getCalls(), 0);
*/
#pragma once

/** Watches its thread for as long as it lives. One at a time on each thread. */
class AllocationCounter
{
public:
    AllocationCounter() noexcept;
    ~AllocationCounter();
    AllocationCounter(const AllocationCounter&) = delete;
    AllocationCounter& operator=(const AllocationCounter&) = delete;

    /** Calls on this thread so far, takes and returns alike; a null that is freed does not count. */
    int getCalls() const noexcept;
};
