#include "support/limitedmemory.h"

#include <cstdlib>
#include <new>
#include <sqlite3.h>

namespace {

thread_local int left = -1;
thread_local bool passes = false;
thread_local bool passed = false;

bool mayAllocate()
{
    if (left == 0 && !passed) {
        passed = passes;
        return false;
    }
    left -= left > 0;
    return true;
}

sqlite3_mem_methods systemMemory;

void* allocateForSqlite(int size)
{
    return mayAllocate() ? systemMemory.xMalloc(size) : nullptr;
}

void* resizeForSqlite(void* memory, int size)
{
    return mayAllocate() ? systemMemory.xRealloc(memory, size) : nullptr;
}

} // namespace

void testsupport::setAllocationsLeft(int count, Shortage shortage)
{
    left = count;
    passes = shortage == Shortage::Passing;
    passed = false;
}

int testsupport::allocationsLeft()
{
    return left;
}

void testsupport::limitSqliteMemory()
{
    sqlite3_config(SQLITE_CONFIG_GETMALLOC, &systemMemory);
    sqlite3_mem_methods limited = systemMemory;
    limited.xMalloc = allocateForSqlite;
    limited.xRealloc = resizeForSqlite;
    sqlite3_config(SQLITE_CONFIG_MALLOC, &limited);
}

// NOLINTBEGIN(cppcoreguidelines-no-malloc): here is where it is managed
void* operator new(std::size_t size)
{
    void* const memory = mayAllocate() ? std::malloc(size) : nullptr;
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
// NOLINTEND(cppcoreguidelines-no-malloc)
