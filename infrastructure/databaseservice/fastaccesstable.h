#pragma once

#include "databaseservice/integers.h"

#include <cstdint>
#include <string>

namespace DatabaseService {

/// An entry of the client's shortcut list: a row of `FastAccess` in `FastAccess.dat`. Text is UTF-8.
struct FastAccessTable {
    std::int32_t Id = 0; ///< given by the store
    std::int32_t Index = 0;
    std::int32_t DataType = 0;
    std::string IconPath;
    std::string Title;
    std::string Tip;
    int64 UpdataTime = -1;
    std::string FilePath;
    std::string FileId;
    std::string ParentId;
    std::int32_t Rotate = 0;
};

} // namespace DatabaseService
