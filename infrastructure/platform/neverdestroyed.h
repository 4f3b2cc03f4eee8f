#pragma once

#include <utility>

namespace platform {

/// What is made once and lives as long as the process, in the one form that it has here:
///
///     static auto& settings = neverDestroyed(Settings());
///
/// inside the function that hands it out. Nothing is in the way before its first use, and it is still there for
/// threads and destructors that run while static objects are destroyed.
template <class Value> Value& neverDestroyed(Value value)
{
    return *new Value(std::move(value));
}

/// The same for what cannot be moved, or made anywhere but in its class: `neverDestroyed(new Settings)`.
template <class Object> Object& neverDestroyed(Object* object)
{
    return *object;
}

} // namespace platform
