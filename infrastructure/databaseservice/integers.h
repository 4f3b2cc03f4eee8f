#pragma once

#include <cstdint>

namespace DatabaseService {

using int64 = std::int64_t;
using uint64 = std::uint64_t;

} // namespace DatabaseService
