#include "command.h"
#include "gallery/galleryname.h"
#include "migration/legacymigration.h"
#include "platform/paths.h"
#include "stores/legacysource.h"
#include "stores/session.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/recordfields.h"
#include "terminal/table.h"

#include <iostream>

namespace fs = std::filesystem;

namespace dbservice {

using migration::Report;
using migration::TableReport;

namespace {

struct MigrateOptions {
    std::string legacy;
    std::string gallery;
    migration::Plan plan;
};

/// A store's file for a dry run: where it lies, or a copy where looking at it would change it.
class StoreToLookAt {
public:
    StoreToLookAt(const fs::path& folder, const fs::path& name) : m_file(folder / name)
    {
        requireDatabaseOrNothing(m_file);
        std::error_code ignored;
        if (fs::exists(m_file, ignored) && !fs::is_empty(m_file, ignored)) {
            m_readable.emplace(folder, name, ReadableStore::Copy::WhereNeeded);
            m_file = m_readable->folder() / name;
        }
    }

    const fs::path& file() const { return m_file; }

private:
    fs::path m_file;
    std::optional<ReadableStore> m_readable;
};

Json toJson(const TableReport& table)
{
    Json json{
        {"legacyTable", table.legacyTable},
        {"table", table.table},
        {"inLegacy", table.inLegacy},
        {"read", table.read},
        {"written", table.written},
        {"alreadyThere", table.alreadyThere},
        {"kept", table.kept},
        {"replaced", table.replaced},
        {"renumbered", table.renumbered},
        {"clamped", table.clamped},
        {"notNumbers", table.notNumbers},
        {"mended", table.mended},
        {"failed", table.lost()},
        {"inStore", table.inStore < 0 ? Json() : Json(table.inStore)},
        {"dropped", Json::object()},
        {"trouble", table.trouble},
    };
    for (const auto& [column, rows] : table.dropped) {
        json["dropped"][std::string(column)] = rows;
    }
    return json;
}

void printJson(const Report& report, const MigrateOptions& options)
{
    Json json{{"legacy", options.legacy}, {"dryRun", options.plan.dryRun}};
    if (report.earlierRun) {
        json["earlierRun"] = *report.earlierRun;
    } else {
        json["tables"] = Json::array();
        for (const TableReport& table : report.tables) {
            json["tables"].push_back(toJson(table));
        }
        json["outOfReach"] = report.outOfReach;
        json["lost"] = report.lost;
        json["stopped"] = report.stopped;
        json["remembered"] = report.remembered;
    }
    std::cout << toLine(json) << '\n';
}

void printTable(const Report& report, bool dryRun)
{
    constexpr auto right = Table::Align::Right;
    Table table({{"Table"},
                 {"Read", right},
                 {dryRun ? "Would write" : "Written", right},
                 {"Already there", right},
                 {"Clamped", right},
                 {"Failed", right},
                 {"In the store", right}});
    for (const TableReport& row : report.tables) {
        table.add({std::string(row.table), grouped(row.read), grouped(row.written), grouped(row.alreadyThere),
                   grouped(row.clamped), grouped(row.lost()), row.inStore < 0 ? "?" : grouped(row.inStore)});
    }
    table.print(std::cout, Session::outputWidth());
}

/// What the numbers of the table do not tell, a line each.
void printRemarks(const Report& report)
{
    const auto remark = [](const TableReport& table, const std::string& text) {
        std::cout << table.table << ": " << text << '\n';
    };
    const auto rows = [](std::int64_t count) { return counted(count, "row", "rows"); };
    for (const TableReport& table : report.tables) {
        if (table.table == "UBAUserLog") {
            remark(table, "gets the rows of the legacy UserLog, as they are all that its reader gives");
        }
        if (table.kept > 0) {
            remark(table, rows(table.kept) + " already there with other values, which stay (--replace)");
        }
        if (table.replaced > 0) {
            remark(table, rows(table.replaced) + " replaced");
        }
        if (table.renumbered > 0) {
            remark(table, rows(table.renumbered) + " under a new id, as another row has theirs");
        }
        if (table.notNumbers > 0) {
            remark(table, rows(table.notNumbers) + " with a text that is no number");
        }
        if (table.mended > 0) {
            remark(table, rows(table.mended) + " whose Sdsmtime the reader cannot give, set right");
        }
        std::string dropped;
        for (const auto& [column, filled] : table.dropped) {
            dropped += (dropped.empty() ? "" : ", ") + std::string(column) + " (" + rows(filled) + ')';
        }
        if (!dropped.empty()) {
            remark(table, "no place any more for " + dropped);
        }
    }
}

/// Throws a `Failure` if anything stays behind.
void tellLosses(Session& session, const Report& report, bool dryRun)
{
    for (const TableReport& table : report.tables) {
        if (!table.trouble.empty()) {
            session.reporter().warning(std::string(table.table) + ": " + table.trouble);
        }
    }
    if (report.outOfReach > 0) {
        session.reporter().warning("UBAUserLog: " + counted(report.outOfReach, "row", "rows") +
                                   " of the legacy table of this name stay behind, as no reader reaches them");
    }
    if (!report.isWhole()) {
        const std::string lost =
            counted(report.lost, "row", "rows") + (dryRun ? " would be" : "") + " lost, see the warnings above";
        throw Failure(report.stopped.empty()
                          ? "cannot migrate everything: " + lost
                          : "cannot migrate to the end: " + report.stopped + (report.lost > 0 ? "; " + lost : ""));
    }
}

int migrate(Session& session, MigrateOptions options)
{
    const fs::path legacy = fs::absolute(pathFromArgument(options.legacy));
    const LegacySource source(legacy);
    migration::Plan& plan = options.plan;
    plan.legacyFile = source.file();
    const fs::path gallery = pathFromArgument(options.gallery);
    std::optional<StoreToLookAt> mainCopy;
    std::optional<StoreToLookAt> galleryCopy;
    if (plan.dryRun) {
        plan.mainFile = mainCopy.emplace(session.storeFolder(), mainFileName).file();
        plan.galleryFile = galleryCopy.emplace(session.storeFolder(), gallery).file();
    } else {
        session.makeStoreFolder();
        session.makeStore(mainFileName);
        session.makeStore(gallery);
        plan.mainFile = session.storeFolder() / mainFileName;
        plan.galleryFile = session.storeFolder() / gallery;
    }
    session.nameInWarnings("migration");
    Report report;
    try {
        report = migration::run(plan,
                                [&](double done, std::string_view table) { session.reporter().progress(done, table); });
    } catch (const migration::Error& error) {
        throw Failure("cannot migrate " + platform::toUtf8(legacy) + ": " + error.what());
    }
    session.reporter().endProgress();
    if (session.json()) {
        printJson(report, options);
    } else if (report.earlierRun) {
        std::cout << "The store has been migrated to before (" << printable(*report.earlierRun)
                  << "); --again does it again.\n";
    } else {
        printTable(report, plan.dryRun);
        printRemarks(report);
    }
    tellLosses(session, report, plan.dryRun);
    return 0;
}

} // namespace

Command migrateCommand()
{
    using migration::Plan;
    return {
        .name = "migrate",
        .group = group::otherStores,
        .summary = "Carry a file of the earlier client generation over into the stores",
        .arguments =
            {argument<&MigrateOptions::legacy>("LEGACY", "The file; no byte of it changes", {.required = true}),
             argument<&MigrateOptions::gallery>(galleryName(true)),
             within<&MigrateOptions::plan>({
                 argument<&Plan::dryRun>("--dry-run", "Tell what would come over, and change nothing"),
                 argument<&Plan::replace>("--replace",
                                          "Let rows take the place of those in the store that have the same "
                                          "key and other values"),
                 argument<&Plan::again>("--again", "Do it even if the store remembers that it was done"),
                 argument<&Plan::skipUba>("--skip-uba", "Leave out UBAUserLog, which gets the rows of UserLog"),
             })},
        .details =
            "Makes the stores where they are missing: main.dat for settings and logs, the gallery's file for the "
            "rest.\n"
            "Rows that the stores hold already stay as they are, so that it can be done again, also after it was\n"
            "interrupted. Failed are rows that could not be read or did not land; any of them makes the exit code 1, "
            "as\n"
            "do rows of the legacy UBAUserLog, which cannot be read, unless it is left out. Clamped are rows with a "
            "number\n"
            "that the store has no room for.",
        .example = "dbservice migrate old.dat --gallery gallery.dat --dry-run",
        .run = migrate,
    };
}

} // namespace dbservice
