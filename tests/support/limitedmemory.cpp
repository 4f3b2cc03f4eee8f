#include "support/limitedmemory.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int left = -1;

} // namespace

void testsupport::setAllocationsLeft(int count)
{
    left = count;
}

int testsupport::allocationsLeft()
{
    return left;
}

void* operator new(std::size_t size)
{
    void* const memory = left == 0 ? nullptr : std::malloc(size);
    left -= left > 0;
    return memory != nullptr ? memory : throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
