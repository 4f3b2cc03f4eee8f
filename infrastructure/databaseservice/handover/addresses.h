#pragma once

#include "databaseservice/integers.h"

#include <cstdint>

namespace DatabaseService {

/// An address as messages and callbacks carry it.
inline int64 addressOf(const void* object)
{
    return static_cast<int64>(reinterpret_cast<std::intptr_t>(object));
}

} // namespace DatabaseService
