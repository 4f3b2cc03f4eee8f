#pragma once

#include <string>

namespace DatabaseService {

/// One setting of the client's: a row of the table of the same name in `main.dat`.
struct UserProperties {
    /// The key of the path of the synchronised folder; `GetAllUserProperties` gives its long form.
    static constexpr const wchar_t* syncCloudFolderKey = L"SyncCloudFolder";

    std::wstring key;
    std::wstring value;
};

} // namespace DatabaseService
