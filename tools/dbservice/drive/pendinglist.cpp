#include "drive/pendinglist.h"

#include "databaseservice/databasebindparameter.h"
#include "drive/drivefields.h"
#include "drive/drivetree.h"
#include "stores/session.h"
#include "terminal/displaytext.h"
#include "terminal/table.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <map>
#include <string_view>
#include <tuple>

namespace dbservice {

using DatabaseService::DriveDataTable;

namespace {

/// By id, those of folders without a row too.
std::map<std::string, std::string> pathsOfTargets(DriveTree& tree, const std::vector<PendingOperation>& operations)
{
    std::map<std::string, std::string> paths;
    for (const PendingOperation& operation : operations) {
        if (const std::string& id = operation.marker.newParentId; !id.empty()) {
            paths[id] = "id:" + id;
        }
    }
    std::vector<std::string> ids;
    ids.reserve(paths.size());
    for (const auto& [id, path] : paths) {
        ids.push_back(id);
    }
    const std::vector<DriveDataTable> folders = tree.rowsById(ids);
    const std::vector<std::string> found = tree.pathsOf(folders);
    for (std::size_t i = 0; i < folders.size(); ++i) {
        paths[folders[i].GetFileid()] = found[i];
    }
    return paths;
}

constexpr const char* anyMarker = "newBatchId <> 0 OR uploadBatchId <> 0 OR renameBatchId <> 0 OR moveBatchId <> 0 OR "
                                  "softDelBatchId <> 0 OR hardDelBatchId <> 0 OR restoreBatchId <> 0";

constexpr std::array<std::string_view, 7> order{"new", "upload", "rename", "move", "bin", "final", "restore"};

/// By operation, then by the number that ties the rows of one action together, then by name.
bool comesFirst(const PendingOperation& left, const PendingOperation& right)
{
    const auto key = [](const PendingOperation& operation) {
        const auto place = std::find(order.begin(), order.end(), operation.marker.operation);
        return std::tuple(place, operation.marker.batchId, operation.row.GetName());
    };
    return key(left) < key(right);
}

} // namespace

std::vector<PendingOperation> pendingOperations(DatabaseService::DriverDBProvider& drive)
{
    DatabaseService::DatabaseBindParameter none;
    std::vector<PendingOperation> operations;
    for (const DriveDataTable& row : drive.GetDriveDataByWhereSql(anyMarker, none)) {
        for (const Marker& marker : markersOf(row)) {
            operations.push_back({row, marker});
        }
    }
    std::stable_sort(operations.begin(), operations.end(), comesFirst);
    return operations;
}

void showPending(const Session& session, DriveTree& tree, const std::vector<PendingOperation>& operations)
{
    std::vector<DriveDataTable> rows;
    rows.reserve(operations.size());
    for (const PendingOperation& operation : operations) {
        rows.push_back(operation.row);
    }
    const std::vector<std::string> paths = tree.pathsOf(rows);
    const std::map<std::string, std::string> folders = pathsOfTargets(tree, operations);
    Table table({{"Operation"}, {"Asked for (UTC)"}, {"Path"}, {"New name or folder"}, {"Batch"}});
    for (std::size_t i = 0; i < operations.size(); ++i) {
        const auto& [row, marker] = operations[i];
        const std::string target = marker.newParentId.empty() ? marker.newName : folders.at(marker.newParentId);
        if (session.json()) {
            Json json = toJson(row);
            json["operation"] = marker.operation;
            json["path"] = paths[i];
            json["batchId"] = marker.batchId;
            json["time"] = marker.time;
            json["target"] = target;
            std::cout << toLine(json) << '\n';
        } else {
            table.add({marker.operation, marker.time != 0 ? humanTime(marker.time) : "-", paths[i],
                       target.empty() ? "-" : target, marker.batchId != 0 ? std::to_string(marker.batchId) : "-"});
        }
    }
    if (!session.json()) {
        table.print(std::cout, Session::outputWidth());
    }
}

} // namespace dbservice
