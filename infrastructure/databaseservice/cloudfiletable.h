#pragma once

#include "databaseservice/integers.h"

#include <cstdint>
#include <string>

namespace DatabaseService {

/// A change of a file in the cloud drive, as the cloud and as this computer see it: a row of the table of the same
/// name in `main.dat`. Text is UTF-8; the meaning of kinds, states and times belongs to the client.
struct T_CloudFileTable {
    int64 id = 0; ///< given by the store
    std::string fileId;
    std::string deleted;
    std::string changeType;
    std::string fromDevice;
    std::string kind;
    std::string fileName;
    std::string localFileName;
    std::string mimeType;
    std::int32_t isFolder = 0;
    std::int32_t trashed = 0;
    std::string parentId;
    std::string parentFolder;
    std::string localParentId;
    std::string localParentFolder;
    int64 createdTime = 0;
    int64 modifiedTime = 0;
    int64 localModifiedTime = 0;
    int64 size = 0;
    std::string thunbnailDownloadLink; ///< "thumbnail"; the file spells it so, too
    std::string localThunbnailDownload;
    std::int32_t status = 0;
    std::int32_t fileStatus = 0;
    std::int32_t isSyncDown = 0;
    std::int32_t isRiskFile = 0;
    std::int32_t imageRotate = 0;
};

} // namespace DatabaseService
