#pragma once

#include "databaseservice/driveconftable.h"
#include "databaseservice/drivedatatable.h"
#include "databaseservice/drivefulltask.h"
#include "databaseservice/engine/recordcolumns.h"

namespace DatabaseService {

/// The tables of `DriveModuleData.dat`, column by column.

struct DriveDataColumns {
    enum Group : unsigned {
        Key = 1,    ///< the row's id
        Cloud = 2,  ///< what the cloud says of the item
        Path = 4,   ///< the local path, which most statements leave alone
        Local = 8,  ///< local state, markers of pending operations and their times
        Batch = 16, ///< batch ids of pending operations
        View = 32,  ///< what lists need beside the cloud's data
        Spare = 64,
        All = Key | Cloud | Path | Local | Batch | View | Spare, ///< every column that statements name
    };

    static constexpr std::array table{
        // clang-format off
        column<&DriveDataTable::m_fileId>("fileId", "TEXT PRIMARY KEY NOT NULL", Key),
        column<&DriveDataTable::m_name>("name", "TEXT", Cloud),
        column<&DriveDataTable::m_kind>("kind", "TEXT", Cloud),
        column<&DriveDataTable::m_mimeType>("mimeType", "TEXT", Cloud),
        column<&DriveDataTable::m_description>("description", "TEXT", Cloud),
        column<&DriveDataTable::m_size>("size", "INTEGER", Cloud),
        column<&DriveDataTable::m_attachmentSize>("attachmentSize", "TEXT", Cloud),
        column<&DriveDataTable::m_hash>("hash", "TEXT", Cloud),
        column<&DriveDataTable::m_contentVersion>("contentVersion", "TEXT", Cloud),
        column<&DriveDataTable::m_parentId>("parentId", "TEXT", Cloud),
        column<&DriveDataTable::m_favorite>("favorite", "INTEGER", Cloud),
        column<&DriveDataTable::m_recycled>("recycled", "INTEGER", Cloud),
        column<&DriveDataTable::m_directlyRecycled>("directlyRecycled", "INTEGER", Cloud),
        column<&DriveDataTable::m_createdTime>("createdTime", "INTEGER", Cloud),
        column<&DriveDataTable::m_modifiedTime>("modifiedTime", "INTEGER", Cloud),
        column<&DriveDataTable::m_recycledTime>("recycledTime", "INTEGER", Cloud),
        column<&DriveDataTable::m_isSync>("isSync", "INTEGER", Cloud),
        column<&DriveDataTable::m_thumbnailDownloadLink>("thumbnailDownloadLink", "TEXT", Cloud),
        column<&DriveDataTable::m_LCDImageDownloadLink>("LCDImageDownloadLink", "TEXT", Cloud),
        column<&DriveDataTable::m_version>("version", "INTEGER", Cloud),
        column<&DriveDataTable::m_batchOper>("batchOper", "INTEGER", Cloud),
        column<&DriveDataTable::m_localAbsolutePath>("localAbsolutePath", "TEXT", Path),
        column<&DriveDataTable::m_localFileSha256>("localFileSha256", "TEXT", Local),
        column<&DriveDataTable::m_deleteSrcPath>("deleteSrcPath", "TEXT", Local),
        column<&DriveDataTable::m_uploadTime>("uploadTime", "INTEGER", Local),
        column<&DriveDataTable::m_renameName>("renameName", "TEXT", Local),
        column<&DriveDataTable::m_renameTime>("renameTime", "INTEGER", Local),
        column<&DriveDataTable::m_moveParentId>("moveParentId", "TEXT", Local),
        column<&DriveDataTable::m_moveTime>("moveTime", "INTEGER", Local),
        column<&DriveDataTable::m_softDelete>("softDelete", "INTEGER", Local),
        column<&DriveDataTable::m_softDeleteSrcPath>("softDeleteSrcPath", "TEXT", Local),
        column<&DriveDataTable::m_softDelTime>("softDelTime", "INTEGER", Local),
        column<&DriveDataTable::m_hardDelete>("hardDelete", "INTEGER", Local),
        column<&DriveDataTable::m_hardDelTime>("hardDelTime", "INTEGER", Local),
        column<&DriveDataTable::m_localRestore>("localRestore", "INTEGER", Local),
        column<&DriveDataTable::m_restoreTime>("restoreTime", "INTEGER", Local),
        column<&DriveDataTable::m_uploadBatchId>("uploadBatchId", "INTEGER", Batch),
        column<&DriveDataTable::m_renameBatchId>("renameBatchId", "INTEGER", Batch),
        column<&DriveDataTable::m_moveBatchId>("moveBatchId", "INTEGER", Batch),
        column<&DriveDataTable::m_softDelBatchId>("softDelBatchId", "INTEGER", Batch),
        column<&DriveDataTable::m_hardDelBatchId>("hardDelBatchId", "INTEGER", Batch),
        column<&DriveDataTable::m_restoreBatchId>("restoreBatchId", "INTEGER", Batch),
        column<&DriveDataTable::m_newBatchId>("newBatchId", "INTEGER", Batch),
        column<&DriveDataTable::m_autoUpload>("autoUpload", "INTEGER", View),
        column<&DriveDataTable::m_riskFileSign>("riskFileSign", "INTEGER", View),
        column<&DriveDataTable::m_riskFileType>("riskFileType", "TEXT", View),
        column<&DriveDataTable::m_fileExtSign>("fileExtSign", "INTEGER", View),
        column<&DriveDataTable::m_cloudContentStatus>("needToDisplay", "INTEGER DEFAULT (1)", View),
        column<&DriveDataTable::m_classIndex>("classIndex", "INTEGER", View),
        column<&DriveDataTable::m_data1>("data1", "TEXT", Spare),
        column<&DriveDataTable::m_data2>("data2", "TEXT", Spare),
        column<&DriveDataTable::m_data3>("data3", "TEXT", Spare),
        column<&DriveDataTable::m_data4>("data4", "TEXT", Spare),
        unnamedColumn<DriveDataTable>("subFileAndDirectory", "INTEGER"),
        unnamedColumn<DriveDataTable>("operateType", "INTEGER"),
        unnamedColumn<DriveDataTable>("device", "TEXT"),
        // clang-format on
    };
    static_assert(table.size() == 56);

    static constexpr auto key = pick(table, Key);
    /// The key as a change of key finds or sets it: from the record's second id.
    static constexpr auto keyFromHelpData = columnFrom<&DriveDataTable::m_helpData>("fileId", "helpData");
};

struct DriveConfColumns {
    enum Group : unsigned { All = 1 };

    static constexpr std::array table{
        // clang-format off
        column<&DriveConfTable::id>("id", "INTEGER PRIMARY KEY NOT NULL", All),
        column<&DriveConfTable::isFirstStart>("isFirstStart", "INTEGER", All),
        column<&DriveConfTable::startCursor>("startCursor", "TEXT", All),
        column<&DriveConfTable::timedTaskInterval>("timedTaskInterval", "INTEGER", All),
        column<&DriveConfTable::fullSyncInterval>("fullSyncInterval", "INTEGER", All),
        column<&DriveConfTable::incrementDetectInterval>("incrementDetectInterval", "INTEGER", All),
        column<&DriveConfTable::automaticSyncInterval>("automaticSyncInterval", "INTEGER", All),
        column<&DriveConfTable::lastFullSyncTimestamp>("lastFullSyncTimestamp", "INTEGER", All),
        column<&DriveConfTable::lastIncrementDetectTimestamp>("lastIncrementDetectTimestamp", "INTEGER", All),
        column<&DriveConfTable::lastAutomaticSyncTimestamp>("lastAutomaticSyncTimestamp", "INTEGER", All),
        column<&DriveConfTable::subscribeInterval>("subscribeInterval", "INTEGER", All),
        column<&DriveConfTable::lastSubscribeTimestamp>("lastSubscribeTimestamp", "INTEGER", All),
        column<&DriveConfTable::rootFileId>("rootFileId", "TEXT", All),
        column<&DriveConfTable::lastNotifySpaceFull>("lastNotifySpaceFull", "INTEGER", All),
        column<&DriveConfTable::SyncRootPath>("SyncRootPath", "TEXT", All),
        column<&DriveConfTable::isFirstTrayStart>("isFirstTrayStart", "INTEGER", All),
        column<&DriveConfTable::ClosedBanners>("ClosedBanners", "TEXT", All),
        column<&DriveConfTable::data1>("data1", "TEXT", All),
        column<&DriveConfTable::data2>("data2", "TEXT", All),
        column<&DriveConfTable::data3>("data3", "TEXT", All),
        column<&DriveConfTable::data4>("data4", "TEXT", All),
        column<&DriveConfTable::lastLostFileQueryTimestamp>("lastLostFileQueryTimestamp", "INTEGER DEFAULT (0)", All),
        column<&DriveConfTable::lostFileQueryCursor>("lostFileQueryCursor", "TEXT DEFAULT ('')", All),
        // clang-format on
    };
    static_assert(table.size() == 23);
};

struct DriveFullTaskColumns {
    enum Group : unsigned { All = 1 };

    static constexpr std::array table{
        // clang-format off
        column<&DriveFullTask::fileId>("fileId", "TEXT PRIMARY KEY NOT NULL", All),
        column<&DriveFullTask::cursor>("cursor", "TEXT", All),
        column<&DriveFullTask::state>("state", "INTEGER", All),
        column<&DriveFullTask::updateTime>("updateTime", "INTEGER", All),
        column<&DriveFullTask::data1>("data1", "TEXT", All),
        column<&DriveFullTask::data2>("data2", "TEXT", All),
        column<&DriveFullTask::data3>("data3", "TEXT", All),
        column<&DriveFullTask::data4>("data4", "TEXT", All),
        // clang-format on
    };
    static_assert(table.size() == 8);
};

} // namespace DatabaseService
