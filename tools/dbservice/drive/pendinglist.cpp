#include "drive/pendinglist.h"

#include "drive/drivefields.h"
#include "drive/drivetree.h"
#include "stores/session.h"
#include "terminal/displaytext.h"
#include "terminal/table.h"

#include <iostream>
#include <map>

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

} // namespace

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
