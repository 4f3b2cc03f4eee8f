#include "commands/commands.h"
#include "drive/driveedit.h"
#include "drive/drivemarkers.h"
#include "stores/session.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace dbservice {

namespace {

struct RenameOptions {
    std::string path;
    std::string name;
};

int rename(Session& session, const RenameOptions& options)
{
    DriveEdit edit(session, "rename");
    if (!isName(options.name)) {
        edit.refuse(options.path,
                    "\"" + options.name + "\" is no name; it takes some UTF-8 text without a slash, not . or ..");
    }
    DatabaseService::DriveDataTable row = edit.rowToChange(options.path);
    edit.requireFreeName(folderToBe(row), options.name, options.path);
    row.SetName(options.name); // lists show this one
    row.SetRenameName(options.name);
    row.SetRenameBatchId(edit.batchId());
    row.SetRenameTime(edit.time());
    edit.write(&DatabaseService::DriverDBProvider::RenameDriveDataById, {row});
    edit.show("lists show the new name from now on");
    return 0;
}

} // namespace

void addRename(CLI::App& app, Command& chosen)
{
    const auto options = std::make_shared<RenameOptions>();
    CLI::App* const command = app.add_subcommand("rename", "Give a file or folder of the drive tree another name");
    command->add_option("PATH", options->path, "Such as /Photos/2024 or id:ID")->required();
    command->add_option("NEWNAME", options->name, "A name only; `mv` takes to another folder")->required();
    command->footer("Lists show and sort by the new name at once, and paths go by it; the cloud has the old one until "
                    "the client\nhas synchronised. Class and type stay what they are. Nothing is renamed on disk, and "
                    "a scan keeps the new name.\nPrints the operation as `pending` does.");
    command->callback(
        [&chosen, options] { chosen = [options](Session& session) { return rename(session, *options); }; });
}

} // namespace dbservice
