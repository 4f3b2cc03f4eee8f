#include "platform/environment.h"

#include "platform/text.h"

#include <windows.h>

namespace platform {

std::string environmentVariable(const std::string& name)
{
    const std::wstring wideName = toWide(name);
    std::wstring value;
    DWORD length = 0;
    // The first turn asks for the size; another follows if the variable has grown meanwhile.
    while ((length = GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size()))) >
           value.size()) {
        value.resize(length);
    }
    value.resize(length);
    return toUtf8(value);
}

} // namespace platform
