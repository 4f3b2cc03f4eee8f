#pragma once

#include "databaseservice/integers.h"

#include <cstdint>
#include <string>

namespace DatabaseService {

/// One folder of a full synchronisation of the drive: a row of the table of the same name in `DriveModuleData.dat`.
/// Text is UTF-8; the meaning of cursor, state and time belongs to the client.
///
/// A plain structure: its integers hold no defined value until somebody sets them.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): no defined value, as said
struct DriveFullTask {
    std::string fileId;
    std::string cursor;
    std::int32_t state;
    int64 updateTime;
    std::string data1;
    std::string data2;
    std::string data3;
    std::string data4;
};

} // namespace DatabaseService
