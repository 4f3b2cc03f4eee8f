#include "clientservices/globalparamwrapper.h"
#include "command.h"
#include "databaseservice/databaseservice.h"
#include "databaseservice/dropalltables.h"
#include "gallery/galleryname.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "stores/session.h"
#include "stores/storefile.h"
#include "terminal/confirm.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/recordfields.h"
#include "terminal/table.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <vector>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

struct ResetOptions {
    std::string gallery;
    bool all = false;
    bool user = false;
    bool yes = false;
};

/// What a file holds.
struct Content {
    fs::path file;
    std::size_t tables = 0;
    std::int64_t rows = 0;
};

Content look(const fs::path& file)
{
    StoreFile store(file);
    const std::vector<std::string> tables = store.tables();
    Content content{file, tables.size()};
    for (const std::string& table : tables) {
        content.rows += store.countRows(table);
    }
    return content;
}

/// The databases that the library would find in the folder. The others are left to its own judgement.
std::vector<Content> lookAtAll(const Session& session)
{
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(session.storeFolder())) {
        const fs::path name = entry.path().filename();
        if (!entry.is_directory() && platform::toUtf8(name).ends_with(".dat") && isDatabase(entry.path())) {
            files.push_back(name);
        }
    }
    if (files.empty()) {
        throw Failure("cannot drop tables: no .dat file in " + platform::toUtf8(session.storeFolder()) +
                      " is a database that can be read");
    }
    std::sort(files.begin(), files.end());
    std::vector<Content> contents;
    std::transform(files.begin(), files.end(), std::back_inserter(contents), look);
    return contents;
}

std::string question(const Session& session, const std::vector<Content>& contents)
{
    std::string text = "Drop the tables of ";
    for (const Content& content : contents) {
        text += (&content == &contents.front() ? "" : ", ") + platform::toUtf8(content.file) + " (" +
            counted(static_cast<std::int64_t>(content.tables), "table", "tables") + ", " +
            counted(content.rows, "row", "rows") + ")";
    }
    return text + " in " + platform::toUtf8(session.storeFolder()) + "?";
}

void show(const Session& session, const std::vector<Content>& before, const std::vector<Content>& after)
{
    Table table({{"File"}, {"Tables dropped", Table::Align::Right}, {"With rows", Table::Align::Right}});
    for (std::size_t i = 0; i < before.size(); ++i) {
        const std::size_t tables = before[i].tables - after[i].tables;
        const std::int64_t rows = before[i].rows - after[i].rows;
        const std::string file = platform::toUtf8(before[i].file);
        table.add({file, std::to_string(tables), grouped(rows)});
        if (session.json()) {
            std::cout << toLine({{"file", file}, {"tables", tables}, {"rows", rows}}) << '\n';
        }
    }
    if (!session.json()) {
        table.print(std::cout, Session::outputWidth());
    }
}

/// `drop` gets the store's folder.
template <class Drop> int resetOne(Session& session, const fs::path& file, bool yes, Drop drop)
{
    session.editStore(file);
    const Content before = look(file);
    session.stopIfFailed("look at " + platform::toUtf8(file));
    confirm(session.reporter(), question(session, {before}), yes);
    drop(GlobalParamWrapper::GetInstance()->GetUserDataBaseFolder());
    const Content after = look(file);
    session.stopIfFailed("drop the tables of " + platform::toUtf8(file));
    show(session, {before}, {after});
    return 0;
}

int resetAll(Session& session, const ResetOptions& options)
{
    session.editAllStores("*.dat");
    const std::vector<Content> before = lookAtAll(session);
    session.stopIfFailed("look at the stores");
    confirm(session.reporter(), question(session, before), options.yes);
    DatabaseService::DropAllTables::GetInstance()->SearchAllDatFile();
    const int failures = session.libraryFailures(); // of files that are no databases
    std::vector<Content> after;
    std::size_t left = 0;
    for (const Content& content : before) {
        left += after.emplace_back(look(content.file)).tables;
    }
    if (session.libraryFailures() > failures) {
        throw Failure("cannot look at what is left of the stores");
    }
    show(session, before, after);
    if (left > 0) {
        throw Failure("cannot drop all tables: " + counted(static_cast<std::int64_t>(left), "table is", "tables are") +
                      " still there");
    }
    return 0;
}

int reset(Session& session, const ResetOptions& options)
{
    if (options.all) {
        return resetAll(session, options);
    }
    if (options.user) {
        return resetOne(session, transferFileName, options.yes, DatabaseService::ResetDataBaseChangeUser);
    }
    return resetOne(session, pathFromArgument(options.gallery), options.yes, [&](const std::wstring& folder) {
        DatabaseService::ResetDataBase(folder, platform::toWide(options.gallery));
    });
}

} // namespace

Command resetCommand()
{
    constexpr const char* which = "Stores";
    About gallery = galleryName(false);
    gallery.rules.oneOf = which;
    return {
        .name = "reset",
        .group = group::stores,
        .summary = "Drop the tables of the gallery, of the transfers, or of all stores",
        .arguments = {argument<&ResetOptions::gallery>(gallery),
                      argument<&ResetOptions::all>(
                          "--all", "Every file of the store's folder that ends in .dat, whatever it holds",
                          {.oneOf = which}),
                      argument<&ResetOptions::user>(
                          "--user", "The transfers, as for a change of user; other stores stay", {.oneOf = which}),
                      argument<&ResetOptions::yes>(yesFlag())},
        .details = "What was in the tables is lost. The files stay, and `dbservice init` makes their tables again, but "
                   "for\nTransferTask, which a client makes when it first needs it.",
        .example = "dbservice reset --gallery gallery.dat --yes",
        .run = reset,
    };
}

} // namespace dbservice
