#include "command.h"
#include "commands/commands.h"
#include "platform/paths.h"
#include "stores/newfile.h"
#include "stores/salvage.h"
#include "stores/session.h"
#include "stores/storefile.h"
#include "stores/storewatch.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/json.h"
#include "terminal/table.h"

#include <iostream>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

struct RecoverOptions {
    std::string file;
    std::string out;
};

struct Recovered {
    const StoreKind* kind = nullptr;
    Salvage salvage;
};

Recovered recoverInto(Session& session, const fs::path& file, const fs::path& partial)
{
    Database& damaged = session.openToRead(file);
    damaged.run("PRAGMA writable_schema = ON"); // with which SQLite opens files that are cut short
    damaged.run("BEGIN");                       // from the first read on nobody writes
    const StoreShape shape = shapeOf(damaged);
    const StoreKind* const kind = kindOf(shape);
    if (kind == nullptr) {
        throw Failure("it has no table of the library's");
    }
    Database fresh(partial, Database::Access::Create);
    Recovered recovered{kind, salvage(damaged, shape, *kind, fresh)};
    damaged.run("ROLLBACK");
    return recovered;
}

void show(const Session& session, const Recovered& recovered)
{
    Table table({{"Table"}, {"Saved", Table::Align::Right}, {"Known lost", Table::Align::Right}, {""}});
    for (const SavedTable& saved : recovered.salvage.tables) {
        if (session.json()) {
            std::cout << toLine({{"table", saved.table},
                                 {"saved", saved.saved},
                                 {"lost", saved.lost},
                                 {"mayLackMore", saved.mayLackMore},
                                 {"lostKeys", saved.lostKeys}})
                      << '\n';
        }
        table.add(
            {saved.table, grouped(saved.saved), grouped(saved.lost), saved.mayLackMore ? "there may be more" : ""});
    }
    if (!session.json()) {
        table.print(std::cout, Session::outputWidth());
    }
}

/// What is not as it was, for the end of the run; empty if all is.
std::string loss(const Salvage& salvage)
{
    std::int64_t lost = 0;
    bool mayLackMore = false;
    for (const SavedTable& saved : salvage.tables) {
        lost += saved.lost;
        mayLackMore = mayLackMore || saved.mayLackMore;
    }
    if (lost == 0 && !mayLackMore) {
        return {};
    }
    return counted(lost, "row is known to be lost", "rows are known to be lost") +
        (mayLackMore ? ", and there may have been more" : "");
}

int recover(Session& session, const RecoverOptions& options)
{
    const fs::path file = pathFromArgument(options.file);
    const fs::path out = pathFromArgument(options.out);
    const NewFile made(out);
    Recovered recovered;
    {
        const StoreWatch::Bearing bearing;
        try {
            recovered = recoverInto(session, file, made.partial());
        } catch (const Failure& failure) {
            std::string reason = failure.what();
            std::string further;
            if (bearing.fault() && bearing.fault()->isLock) {
                reason = bearing.fault()->reason;
            } else if (bearing.fault() && bearing.fault()->reason.starts_with("damaged")) {
                further = ". A sqlite3 shell whose SQLite has sqlite_dbpage looks page by page: sqlite3 FILE .recover";
            }
            throw Failure("cannot recover " + platform::toUtf8(file) + ": " + reason + "; nothing has been made" +
                          further);
        }
    }
    made.giveName();
    show(session, recovered);
    Reporter& reporter = session.reporter();
    reporter.note("what could be read of the " + std::string(recovered.kind->meaning) + " is in " +
                  platform::toUtf8(out) + "; `dbservice check` tells whether it makes sense");
    for (const std::string& table : recovered.salvage.leftOut) {
        reporter.warning("the table " + table + " is none of the library's and is left out");
    }
    if (!recovered.salvage.knowsGivenIds) {
        reporter.warning("which ids were given before is not known, so that ids of rows that are gone may come again");
    }
    const std::string lost = loss(recovered.salvage);
    if (!lost.empty()) {
        reporter.error("cannot save all: " + lost);
        return failed;
    }
    return 0;
}

} // namespace

Command recoverCommand()
{
    return {
        .name = "recover",
        .group = group::stores,
        .summary = "Save what can be read of a damaged store file into a new one",
        .arguments = {argument<&RecoverOptions::file>("FILE", "A store's file, whatever it is called",
                                                      {.required = true}),
                      argument<&RecoverOptions::out>("OUT", "The file to make; it may not be there",
                                                     {.required = true})},
        .details = "The new file has the tables and indexes that this library lays down. Around a damage rows are read "
                   "from both\nsides, and the table's indexes tell which ones are lost; with --json their keys are "
                   "named. The damaged\nfile stays as it is. The exit code is 1 when rows are lost.",
        .example = "dbservice recover DriveModuleData.dat saved.dat",
        .run = recover,
    };
}

} // namespace dbservice
