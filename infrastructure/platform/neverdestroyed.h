#pragma once

#include <utility>

namespace platform {

/// What is built once, such as a statement, for as long as the process lives: threads may still need it while static
/// objects are destroyed.
template <class Value> Value& neverDestroyed(Value value)
{
    return *new Value(std::move(value));
}

} // namespace platform
