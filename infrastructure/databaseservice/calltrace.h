#pragma once

#include "databaseservice/export.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <string_view>

/// What each call of the library does and what its time goes into, for a client that asks why something is slow.
///
///     DatabaseService::SetCallTrace([](const DatabaseService::CallTrace& call) {
///         if (call.waiting > std::chrono::milliseconds(100)) { ... } // another program had the file
///     });
///
/// Threads: any. The callback runs on the thread of the call, once the connection is closed, so it may call the
/// library, whose calls are traced in turn. A call uses the callback that was there when it began.
/// Failure: what the callback throws is dropped, since a trace may not change what a call does.
/// Costs: without a callback one atomic load a call.
namespace DatabaseService {

/// One call, from its begin to after its commit. The texts are good for as long as the callback runs.
struct CallTrace {
    std::string_view store;     ///< the store's file name; of `CommonSqliteDb` the whole path
    std::string_view statement; ///< SQL with the names of its parameters, without the values that are bound
    std::uint64_t rowsIn = 0;   ///< how often the statement was run with values
    std::uint64_t rowsOut = 0;  ///< rows that were read
    bool succeeded = false;     ///< what the engine reports; a row that is lost on the way does not count against it

    std::chrono::steady_clock::time_point start; ///< of the call
    // Together they are the call, less what closing takes.
    std::chrono::nanoseconds opening{};    ///< the connection, where the call opens one, and preparing the statement
    std::chrono::nanoseconds waiting{};    ///< for locks that others had, in any stage; `CommonSqliteDb` does not tell
    std::chrono::nanoseconds working{};    ///< from the transaction's begin to its last row
    std::chrono::nanoseconds committing{}; ///< nothing where there is no transaction of the call's own
};

/// What a call ends in.
using CallTraceCallback = std::function<void(const CallTrace&)>;

/// From here on each call of the engine and of `CommonSqliteDb` ends in the callback; an empty one ends that. Calls
/// under way on other threads may still end in the callback before.
DATABASESERVICE_EXPORT void SetCallTrace(CallTraceCallback callback);

} // namespace DatabaseService
