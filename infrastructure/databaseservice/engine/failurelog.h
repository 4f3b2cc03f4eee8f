#pragma once

#include "clientservices/cloudlogger.h"
#include "platform/text.h"

#include <sqlite3.h>
#include <string>

namespace DatabaseService {

/// A line that readers of the client's log take for a failure; narrow text is UTF-8.
template <class Text> void logFailure(int line, const char* function, const Text& message)
{
    Logger::CloudLogger::GetInstance()->Output(0, 5, line, function, message, true);
}

/// What SQLite says of the last failure of a connection.
inline std::wstring errorText(sqlite3* db)
{
    return platform::toWide(sqlite3_errmsg(db));
}

} // namespace DatabaseService
