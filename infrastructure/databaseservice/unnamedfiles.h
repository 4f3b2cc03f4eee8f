// The library's own: not installed.
#pragma once

#include "clientservices/cloudlogger.h"

#include <string>

namespace DatabaseService {

/// Writes a line about a file that was left alone, since no text names it; `shown` is as near as text comes.
inline void reportUnnamed(const std::wstring& shown, const char* function)
{
    Logger::CloudLogger::GetInstance()->Output(0, 5, __LINE__, function,
                                               L"left alone, as its name is no Unicode: " + shown, true);
}

} // namespace DatabaseService
