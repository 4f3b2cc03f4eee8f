#include "stores/storecheck.h"

#include "databaseservice/version.h"
#include "platform/paths.h"
#include "stores/newfile.h"
#include "stores/rowcheck.h"
#include "stores/session.h"
#include "stores/storelook.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"

#include <algorithm>
#include <sqlite3.h>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

using Severity = Finding::Severity;
using Of = ShapeDifference::Of;

constexpr const char* whatHelps = "; `dbservice recover` saves what can be read";

/// Whether another program holds the lock of a writer on the file, which lets others read.
bool isBeingWritten(const Database& database)
{
    sqlite3_file* file = nullptr;
    int reserved = 0;
    const bool asked = sqlite3_file_control(database.handle(), "main", SQLITE_FCNTL_FILE_POINTER, &file) == SQLITE_OK &&
        file->pMethods != nullptr && file->pMethods->xCheckReservedLock(file, &reserved) == SQLITE_OK;
    return asked && reserved != 0;
}

Finding findingOf(const ShapeDifference& difference)
{
    Finding finding{Severity::Note, difference.table, {}, difference.text};
    switch (difference.of) {
    case Of::MissingTable:
        finding.what += "; the library makes it when it next needs it";
        break;
    case Of::MissingColumn:
        finding.severity = Severity::Error;
        finding.what += ": every statement that names it fails; `dbservice recover` makes a file that has it";
        break;
    case Of::OtherColumn:
        finding.severity = Severity::Warning;
        break;
    case Of::MissingIndex:
    case Of::OtherIndex:
        finding.severity = Severity::Warning;
        finding.what += ": lists are slow; --repair makes the library's";
        finding.mendable = true;
        break;
    case Of::AddedTable:
    case Of::AddedColumn:
        break;
    }
    return finding;
}

/// One file under the check. Its parts do not depend on each other, so that a damage met by one does not hide what the
/// next would find.
class StoreCheck {
public:
    StoreCheck(Session& session, const fs::path& file) : m_session(session), m_file(file) { }

    Findings run()
    {
        for (const auto& [journal, size] : journalsOf(m_file)) {
            add(Severity::Note, {},
                "beside it lies " + platform::toUtf8(journal.filename()) + ", " +
                    humanSize(static_cast<std::int64_t>(size)) +
                    ": another program is writing or was interrupted; what it has finished is looked at");
        }
        if (part([this] { open(); })) {
            part([this] { checkIndexOfNames(); });
            part([this] { checkIntegrity(); });
            checkTables();
        }
        std::stable_sort(m_findings.begin(), m_findings.end(),
                         [](const Finding& left, const Finding& right) { return left.severity < right.severity; });
        return std::move(m_findings);
    }

private:
    template <class Part> bool part(Part look)
    {
        std::string reason = whatStopped(m_file, look);
        const bool well = reason.empty();
        if (reason.starts_with("damaged") || reason.starts_with("cut short")) {
            reason += whatHelps;
        }
        const bool isKnown = std::any_of(m_findings.begin(), m_findings.end(),
                                         [&](const Finding& finding) { return finding.what == reason; });
        if (!well && !isKnown) {
            add(Severity::Error, {}, reason);
        }
        return well;
    }

    void add(Severity severity, const std::string& table, const std::string& what, bool mendable = false)
    {
        m_findings.push_back({severity, table, {}, what, mendable});
    }

    void open()
    {
        m_database = &m_session.openToRead(m_file);
        if (isBeingWritten(*m_database)) {
            add(Severity::Warning, {}, "another program is writing to it now");
        }
        m_shape = shapeOf(*m_database);
        m_kind = kindOf(m_shape);
        if (m_kind == nullptr) {
            add(Severity::Note, {},
                "it has no table of the library's: only what holds for every database is looked at");
            return;
        }
        for (const ShapeDifference& difference : differences(m_shape, *m_kind)) {
            m_findings.push_back(findingOf(difference));
        }
    }

    void checkIndexOfNames()
    {
        if (m_shape.index("nameIndex") != nullptr && examineNameIndex(*m_database) == NameIndex::Disagrees) {
            m_namesDisagree = true;
            add(Severity::Error, "DriveDataTable",
                std::string("nameIndex is not in this build's order of names, ") + DatabaseService::NameOrderVersion() +
                    ", or lacks rows: lists leave out rows; `dbservice reindex` or --repair mends it",
                true);
        }
    }

    void checkIntegrity()
    {
        m_database->run("PRAGMA cache_size = -65536"); // it goes back and forth between a table and its indexes
        for (std::string line : m_database->texts("PRAGMA integrity_check(100)")) {
            std::replace(line.begin(), line.end(), '\n', ' ');
            const std::size_t index = line.find("missing from index ");
            const bool mendable = index != std::string::npos || line.starts_with("wrong # of entries in index ");
            const bool isKnown = m_namesDisagree && mendable && line.ends_with(" nameIndex");
            if (line != "ok" && !isKnown) {
                add(Severity::Error, {}, "damaged: " + line + (mendable ? "; --repair mends it" : whatHelps), mendable);
            }
        }
    }

    void checkTables()
    {
        if (m_kind == nullptr) {
            return;
        }
        for (const TableShape& library : shapeOfLibrary(*m_kind).tables) {
            if (const TableShape* const table = m_shape.table(library.name)) {
                part([&] { checkCells(*m_database, *table, library, m_findings); });
            }
        }
        if (m_shape.table("DriveDataTable") != nullptr) {
            part([this] { checkDriveRows(*m_database, m_shape, m_findings); });
        }
        if (m_shape.table("GalleryFile") != nullptr && m_shape.table("Album") != nullptr) {
            part([this] { checkGalleryRows(*m_database, m_findings); });
        }
    }

    Session& m_session;
    const fs::path& m_file;
    Database* m_database = nullptr;
    StoreShape m_shape;
    const StoreKind* m_kind = nullptr;
    bool m_namesDisagree = false;
    Findings m_findings;
};

/// A name for a copy beside the file that nothing has.
fs::path freeName(const fs::path& file)
{
    std::error_code error;
    for (int number = 1;; ++number) {
        fs::path name = file;
        name += ".before-repair" + (number == 1 ? std::string() : "-" + std::to_string(number));
        const fs::file_status status = fs::symlink_status(name, error);
        if (!fs::status_known(status)) {
            throw Failure("cannot look at " + platform::toUtf8(name) + ": " + error.message());
        }
        if (!fs::exists(status)) {
            return name;
        }
    }
}

/// Through SQLite, since a file that this process opens and closes besides would lose SQLite's locks on it.
void copyDatabase(const fs::path& file, const fs::path& to)
{
    Database from(file);
    Database copy(to, Database::Access::Create);
    sqlite3_backup* const backup = sqlite3_backup_init(copy.handle(), "main", from.handle(), "main");
    const int code = backup == nullptr ? SQLITE_ERROR : sqlite3_backup_step(backup, -1);
    sqlite3_backup_finish(backup);
    if (code != SQLITE_DONE) {
        throw Failure("cannot make the copy " + platform::toUtf8(to) + ": " +
                      (backup == nullptr ? sqlite3_errmsg(copy.handle()) : sqlite3_errstr(code)));
    }
}

void remakeIndexes(Database& database)
{
    const StoreShape shape = shapeOf(database);
    if (const StoreKind* const kind = kindOf(shape)) {
        for (const ShapeDifference& difference : differences(shape, *kind)) {
            const IndexShape* const there = shape.index(difference.name);
            if (difference.of == Of::OtherIndex && there != nullptr) {
                database.run("DROP INDEX " + there->name);
            }
            if (difference.of == Of::OtherIndex || difference.of == Of::MissingIndex) {
                database.run(shapeOfLibrary(*kind).index(difference.name)->sql);
            }
        }
    }
    database.run("REINDEX");
}

} // namespace

Findings checkStore(Session& session, const fs::path& file)
{
    return StoreCheck(session, file).run();
}

fs::path makeIndexesAnew(const fs::path& file)
{
    fs::path copy;
    const std::string reason = whatStopped(file, [&] {
        Database database(file, Database::Access::Write);
        database.run("BEGIN IMMEDIATE"); // what fails from here on is undone when the connection closes
        copy = freeName(file);
        const NewFile made(copy);
        copyDatabase(file, made.partial()); // on a connection of its own, as a writer cannot be copied from
        made.giveName();
        remakeIndexes(database);
        database.run("COMMIT");
    });
    if (!reason.empty()) {
        std::error_code ignored;
        if (!copy.empty()) {
            fs::remove(copy, ignored);
        }
        throw Failure("cannot repair " + platform::toUtf8(file) + ": " + reason + "; the file is as it was");
    }
    return copy;
}

} // namespace dbservice
