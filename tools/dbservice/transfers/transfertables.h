#pragma once

#include "databaseservice/transferrecords.h"
#include "stores/storefile.h"
#include "terminal/json.h"

#include <string>
#include <vector>

namespace dbservice {

/// A table of the transfer store.
struct TransferTable {
    const char* name;
    std::vector<const char*> listed; ///< the columns for a person
    /// All rows with their stored columns as keys, the oldest first. Lacks those that no reader of the library gives:
    /// their type is no whole number of 32 bits.
    std::vector<Json> (*read)(StoreFile& file);
};

extern const TransferTable uploadTable;
extern const TransferTable downloadTable;
extern const TransferTable completedTable;
extern const TransferTable taskTable;

/// The highest id in a table, at least 0.
int highestId(StoreFile& file, const TransferTable& table);
/// The first of `count` ids above all that uploads have, which get theirs from whoever writes them. Throws a `Failure`
/// when there are not as many.
int freeUploadIds(StoreFile& file, int count);

Json toJson(const DatabaseService::TransmissionDB::UploadTaskProperty& row);
Json toJson(const DatabaseService::TransmissionDB::DownloadTaskProperty& row);
Json toJson(const DatabaseService::TransmissionDB::CompletedTaskProperty& row);
Json toJson(const DatabaseService::TransmissionDB::DbTransferTask& row);

} // namespace dbservice
