#pragma once

#include "clientservices/cloudlogger.h"

namespace DatabaseService {

/// A line that readers of the client's log take for a failure; narrow text is UTF-8.
template <class Text> void logFailure(int line, const char* function, const Text& message)
{
    Logger::CloudLogger::GetInstance()->Output(0, 5, line, function, message, true);
}

} // namespace DatabaseService
