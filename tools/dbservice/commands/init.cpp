#include "clientservices/globalparamwrapper.h"
#include "command.h"
#include "databaseservice/databaseservice.h"
#include "databaseservice/transmissiondbmodule.h"
#include "gallery/galleryname.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "stores/session.h"
#include "stores/storefile.h"
#include "terminal/displaytext.h"
#include "terminal/recordfields.h"
#include "terminal/table.h"

#include <filesystem>
#include <iostream>
#include <vector>

namespace dbservice {

namespace {

void startStores(Session& session, const std::string& gallery)
{
    session.writeDrive(); // ahead of the others, since it refuses some files before anything is written
    session.makeStore(mainFileName);
    const std::wstring folder = GlobalParamWrapper::GetInstance()->GetUserDataBaseFolder();
    if (gallery.empty()) {
        DatabaseService::InitDataBase(folder);
    } else {
        DatabaseService::InitDataBase(folder, platform::toWide(gallery));
    }
    session.makeStore(transferFileName);
    session.module<DatabaseService::TransmissionDB::TransmissionDBModule>().OnUserLogin();
    session.stopIfFailed("start the stores");
}

void show(const Session& session, const std::filesystem::path& fileName)
{
    StoreFile store(fileName);
    const std::string file = platform::toUtf8(session.storeFolder() / fileName);
    Table table({{"Table"}, {"Rows", Table::Align::Right}});
    Json json{{"file", file}, {"tables", Json::object()}};
    for (const std::string& name : store.tables()) {
        const int rows = store.countRows(name);
        table.add({name, grouped(rows)});
        json["tables"][name] = rows;
    }
    if (session.json()) {
        std::cout << toLine(json) << '\n';
    } else {
        std::cout << printable(file) << '\n';
        table.print(std::cout, Session::outputWidth());
    }
}

int init(Session& session, const std::string& gallery)
{
    session.makeStoreFolder();
    std::vector<std::filesystem::path> files{driveFileName, mainFileName};
    if (!gallery.empty()) {
        files.push_back(pathFromArgument(gallery));
    }
    files.emplace_back(shortcutFileName);
    files.emplace_back(transferFileName);
    for (const std::filesystem::path& file : files) {
        session.makeStore(file); // refuses what is no database before anything is written
    }
    startStores(session, gallery);
    for (const std::filesystem::path& file : files) {
        show(session, file);
    }
    return 0;
}

} // namespace

Command initCommand()
{
    return {
        .name = "init",
        .group = group::stores,
        .summary = "Make the stores' files and tables where they are missing, and show them",
        .arguments = {argument<std::string>(galleryName(false))},
        .details =
            "Without --gallery the gallery is left out. The transfer store starts as when a user logs in, without\n"
            "the table TransferTask, which a client makes when it first needs it.\n"
            "With --json each line is a file with the rows of its tables.",
        .example = "dbservice init --gallery gallery.dat",
        .run = init,
    };
}

} // namespace dbservice
