/// \file
/// Counts what the program allocates with operator new.

#include "Allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{

std::atomic<int> allocations(0);
std::atomic<bool> counting(false);

} // namespace

namespace foreground_test
{

void startCountingAllocations()
{
    allocations = 0;
    counting = true;
}

int stopCountingAllocations()
{
    counting = false;
    return allocations;
}

} // namespace foreground_test

void *operator new(std::size_t size)
{
    if(counting)
        ++allocations;
    if(void *const memory = std::malloc(size != 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}

// All kinds that are freed by the delete below: a sanitizer has some of its own.
void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    if(counting)
        ++allocations;
    return std::malloc(size != 0 ? size : 1);
}

void *operator new[](std::size_t size)
{
    return operator new(size);
}

void *operator new[](std::size_t size, const std::nothrow_t &none) noexcept
{
    return operator new(size, none);
}

void operator delete(void *memory) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete[](void *memory) noexcept
{
    std::free(memory);
}

void operator delete[](void *memory, std::size_t) noexcept
{
    std::free(memory);
}
