#pragma once

#include "databaseservice/integers.h"

#include <cstdint>
#include <string>

namespace DatabaseService {

/// The drive's synchronisation configuration: a row of the table of the same name in `DriveModuleData.dat`. Text is
/// UTF-8; the meaning of cursors, intervals and times belongs to the client.
///
/// A plain structure: its integers hold no defined value until somebody sets them.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): no defined value, as said
struct DriveConfTable {
    int64 id;
    std::int32_t isFirstStart;
    std::string startCursor;
    std::int32_t timedTaskInterval;
    std::int32_t fullSyncInterval;
    std::int32_t incrementDetectInterval;
    std::int32_t automaticSyncInterval;
    int64 lastFullSyncTimestamp;
    int64 lastIncrementDetectTimestamp;
    int64 lastAutomaticSyncTimestamp;
    std::int32_t subscribeInterval;
    int64 lastSubscribeTimestamp;
    std::string rootFileId;
    int64 lastNotifySpaceFull;
    std::string SyncRootPath;
    std::int32_t isFirstTrayStart;
    std::string ClosedBanners;
    int64 lastLostFileQueryTimestamp;
    std::string lostFileQueryCursor;
    std::string data1;
    std::string data2;
    std::string data3;
    std::string data4;
};

} // namespace DatabaseService
