#pragma once

#include <cstdint>

namespace DatabaseService {

/// What the columns hold, and what callbacks get.
using int64 = std::int64_t;
/// The unsigned one, which callbacks get.
using uint64 = std::uint64_t;

} // namespace DatabaseService
