#pragma once

#include <string>

namespace DatabaseService {

/// One setting of the client's: a row of the table of the same name in `main.dat`.
struct UserProperties {
    std::wstring key;
    std::wstring value;
};

} // namespace DatabaseService
