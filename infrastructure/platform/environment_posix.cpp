#include "platform/environment.h"

#include <cstdlib>

namespace platform {

std::string environmentVariable(const std::string& name)
{
    const char* const value = std::getenv(name.c_str());
    return value == nullptr ? std::string() : value;
}

} // namespace platform
