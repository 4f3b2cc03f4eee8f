#pragma once

#include "databaseservice/drivedatatable.h"
#include "scan/digest.h"
#include "scan/sourcefolder.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace dbservice {

/// What a scan stores of an entry, and by which it sees later that the entry has changed. Text lies elsewhere.
struct DiskValues {
    std::string_view id;
    std::string_view name;
    std::string_view mimeType;
    std::string_view contentVersion;
    std::string_view parentId;
    std::int64_t size = 0;
    std::int64_t created = 0;
    std::int64_t modified = 0;
    std::int32_t extensionSign = 0;
    std::int32_t classIndex = 0;
};

/// The values of an entry in its folder. `texts` is where those of them lie that the entry has not as text.
struct MadeUpTexts {
    std::string id;
    std::string contentVersion;
};
DiskValues valuesOf(const DiskEntry& entry, std::string_view parentId, MadeUpTexts& texts);

/// The row of a new entry with its whole path.
DatabaseService::DriveDataTable newRow(const DiskEntry& entry, std::string_view parentId, const std::string& path);
/// Brings a row up to date. Whether anything changed. A name that waits to be carried to the cloud stays.
bool update(DatabaseService::DriveDataTable& row, const DiskEntry& entry, std::string_view parentId);

/// `scratch` is kept for its room.
Digest digestOf(const DiskValues& values, std::string& scratch);

} // namespace dbservice
