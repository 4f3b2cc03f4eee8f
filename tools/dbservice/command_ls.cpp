#include "commands.h"
#include "displaytext.h"
#include "drivefields.h"
#include "drivetree.h"
#include "failure.h"
#include "session.h"
#include "table.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>
#include <unordered_map>

namespace dbservice {

using DatabaseService::DriveDataTable;

namespace {

struct LsOptions {
    std::string path = "/";
    unsigned offset = 0;
    unsigned count = 100;
};

/// One page of a folder's rows, folders first.
std::vector<DriveDataTable> page(DatabaseService::DriverDBProviderBase& drive, const std::string& folder,
                                 const LsOptions& options)
{
    std::vector<std::string> files;
    std::vector<std::string> ids;
    drive.GetFolderSubFile(folder, files, ids, options.count, options.offset);
    ids.insert(ids.end(), files.begin(), files.end());

    std::unordered_map<std::string, DriveDataTable> byId;
    for (DriveDataTable& row : DriveTree(drive).rowsById(ids)) {
        byId.emplace(row.GetFileid(), std::move(row));
    }
    std::vector<DriveDataTable> rows;
    for (const std::string& id : ids) {
        const auto found = byId.find(id);
        if (found != byId.end()) {
            rows.push_back(std::move(found->second));
        }
    }
    return rows;
}

void print(Session& session, const std::vector<DriveDataTable>& rows)
{
    if (session.json()) {
        for (const DriveDataTable& row : rows) {
            std::cout << toLine(toJson(row)) << '\n';
        }
        return;
    }
    Table table({{"Size", Table::Align::Right}, {"Modified (UTC)"}, {"Name"}});
    for (const DriveDataTable& row : rows) {
        table.add({row.IsFolder() ? "-" : humanSize(row.GetSize()), humanTime(row.GetModifiedTime()),
                   row.GetName() + (row.IsFolder() ? "/" : "")});
    }
    table.print(std::cout, Session::outputWidth());
}

int ls(Session& session, const LsOptions& options)
{
    DatabaseService::DriverDBProviderBase& drive = session.readDrive();
    // A folder's id is good without a row of its own: in a client's store the top folder has none.
    const std::optional<std::string> id = idInPath(options.path);
    const DriveDataTable row = id ? drive.GetDriveDataById(*id) : DriveTree(drive).find(options.path);
    if (!row.Empty() && !row.IsFolder()) {
        print(session, {row});
        return 0;
    }
    const std::string folder = id ? *id : row.GetFileid();
    const std::vector<DriveDataTable> rows = page(drive, folder, options);
    if (rows.empty() && row.Empty() && options.offset == 0 && options.count > 0) {
        throw Failure("cannot find a row with the id " + folder + " in the store, nor any row below it");
    }
    print(session, rows);

    LsOptions next{options.path, options.offset + options.count, 1};
    if (rows.size() == options.count && next.offset >= options.offset && !page(drive, folder, next).empty()) {
        session.reporter().note("more follows with --offset " + std::to_string(next.offset));
    }
    return 0;
}

} // namespace

void addLs(CLI::App& app, Command& chosen)
{
    const auto options = std::make_shared<LsOptions>();
    CLI::App* const command = app.add_subcommand("ls", "List a folder of the drive tree, page by page");
    command->add_option("PATH", options->path, "Such as /Photos/2024 or id:ID; / is the root")->capture_default_str();
    command->add_option("--offset", options->offset, "How many rows to leave out first")->capture_default_str();
    command->add_option("--count", options->count, "How many rows to show")->capture_default_str();
    command->footer("A page comes in the order of the store, folders first. Times are UTC, sizes in units of 1024 "
                    "bytes.\nWith --json each line is a row with its stored columns: sizes in bytes, times in "
                    "seconds since 1970 UTC.");
    command->callback([&chosen, options] {
        chosen = [options](Session& session) {
            return ls(session, *options);
        };
    });
}

} // namespace dbservice
