#include "stores/storecopy.h"

#include "platform/paths.h"
#include "stores/session.h"
#include "stores/statement.h"
#include "stores/storefile.h"
#include "stores/storewatch.h"
#include "terminal/failure.h"

#include <algorithm>
#include <fstream>
#include <sqlite3.h>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

/// Such a file cannot be read without laying down others beside it.
bool hasWriteAheadLog(const fs::path& file)
{
    std::array<char, 20> header{};
    std::ifstream(file, std::ios::binary).read(header.data(), header.size());
    return header[18] == 2 || header[19] == 2;
}

/// SQLite's code.
int backUp(Database& source, const fs::path& target)
{
    Database made(target, Database::Access::Create);
    sqlite3_backup* const backup = sqlite3_backup_init(made.handle(), "main", source.handle(), "main");
    if (backup == nullptr) {
        made.fail("make");
    }
    const StoreWatch::CopiesPages all;
    // A client that writes all the time leaves short gaps. `StoreWatch` ends the wait.
    const auto askAgain = [](void* /*unused*/, int /*times*/) { return sqlite3_sleep(1) >= 0 ? 1 : 0; };
    sqlite3_busy_handler(source.handle(), askAgain, nullptr);
    const int code = sqlite3_backup_step(backup, -1);
    sqlite3_backup_finish(backup);
    return code;
}

bool isText(const Database::Row& row, int column)
{
    return row.type(column) == SQLITE_TEXT || row.type(column) == SQLITE_BLOB;
}

void replace(sqlite3_context* context, int /*count*/, sqlite3_value** values)
{
    sqlite3_value* const value = values[0];
    const int type = sqlite3_value_type(value);
    if (type != SQLITE_TEXT && type != SQLITE_BLOB) {
        sqlite3_result_value(context, value);
        return;
    }
    const auto* const bytes = type == SQLITE_TEXT ? reinterpret_cast<const char*>(sqlite3_value_text(value))
                                                  : static_cast<const char*>(sqlite3_value_blob(value));
    const std::string_view text(bytes == nullptr ? "" : bytes, static_cast<std::size_t>(sqlite3_value_bytes(value)));
    const Pseudonyms& pseudonyms = **static_cast<const Pseudonyms**>(sqlite3_user_data(context));
    try {
        const std::string made = pseudonyms.of(text);
        if (type == SQLITE_TEXT) {
            sqlite3_result_text64(context, made.data(), made.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
        } else {
            sqlite3_result_blob64(context, made.data(), made.size(), SQLITE_TRANSIENT);
        }
    } catch (const std::exception&) {
        sqlite3_result_error(context, "a text that has no pseudonym", -1);
    }
}

void copyRows(Database& target, const std::string& table)
{
    const std::vector<std::string> columns = target.columns(table);
    std::string values;
    for (const std::string& column : columns) {
        values += (values.empty() ? "" : ", ") + ("pseudonym(" + inQuotes(column, '"') + ")");
    }
    const bool hasNumbers =
        target.number("SELECT wr FROM pragma_table_list WHERE schema = 'source' AND name = ?", {table}) == 0 &&
        std::none_of(columns.begin(), columns.end(),
                     [](const std::string& column) { return sqlite3_stricmp(column.c_str(), "rowid") == 0; });
    const std::string number = hasNumbers ? "rowid, " : "";
    const std::string quoted = inQuotes(table, '"');
    target.run("INSERT INTO main." + quoted + "(" + number + Database::list(columns) + ") SELECT " + number + values +
               " FROM source." + quoted);
}

} // namespace

void copyDatabase(Session& session, const fs::path& file, const fs::path& target)
{
    if (!hasWriteAheadLog(file)) {
        Database source(file);
        const int code = backUp(source, target);
        if (code == SQLITE_DONE) {
            return;
        }
        fs::remove(target);
        if ((code & 0xFF) != SQLITE_READONLY) { // which would undo a journal
            throw Failure("cannot copy " + source.called() + ": " + sqlite3_errstr(code));
        }
    }
    Database& readable = session.openToRead(file); // a journal is undone in a copy
    if (const int code = backUp(readable, target); code != SQLITE_DONE) {
        throw Failure("cannot copy " + readable.called() + ": " + sqlite3_errstr(code));
    }
}

void addTexts(Database& database, Pseudonyms& pseudonyms)
{
    for (const std::string& table : database.tables()) {
        database.run("SELECT " + Database::list(database.columns(table)) + " FROM " + inQuotes(table, '"'), {},
                     [&](const Database::Row& row) {
                         for (int i = 0; i < row.size(); ++i) {
                             if (isText(row, i)) {
                                 pseudonyms.add(row.text(i));
                             }
                         }
                     });
    }
}

void writeRedacted(const fs::path& file, const fs::path& target, const Pseudonyms& pseudonyms,
                   const std::string& called)
{
    Database made(target, Database::Access::Create, "the copy of " + called);
    // A foreign column may compute a value of any length, and SQLite does so for each row that is added, even if it is
    // not stored.
    const std::uintmax_t longest = std::min<std::uintmax_t>(4 * fs::file_size(file) + 1'000'000, 1'000'000'000);
    sqlite3_limit(made.handle(), SQLITE_LIMIT_LENGTH, static_cast<int>(longest));
    const Pseudonyms* state = &pseudonyms;
    sqlite3_create_function_v2(made.handle(), "pseudonym", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, &state, replace,
                               nullptr, nullptr, nullptr);
    made.run("ATTACH ? AS source", {platform::toUtf8(file)});
    for (const char* pragma :
         {"PRAGMA main.journal_mode = OFF", "PRAGMA main.synchronous = OFF", "PRAGMA ignore_check_constraints = 1"}) {
        made.run(pragma);
    }
    made.run("BEGIN");
    const auto schema = [&made](const std::string& condition) {
        return made.texts("SELECT sql FROM source.sqlite_master WHERE sql IS NOT NULL AND name NOT LIKE "
                          "'sqlite!_%' ESCAPE '!' AND " +
                          condition + " ORDER BY rowid");
    };
    if (!schema("sql LIKE 'CREATE VIRTUAL%'").empty()) {
        throw Failure("cannot redact " + called +
                      ": it holds a virtual table, which keeps texts in a form of its own; "
                      "a copy without --redact is possible");
    }
    for (const std::string& sql : schema("type = 'table'")) {
        made.run(sql);
    }
    for (const std::string& table : made.tables()) {
        copyRows(made, table);
    }
    if (made.number("SELECT count(*) FROM source.sqlite_master WHERE name = 'sqlite_sequence'") > 0) {
        made.run("DELETE FROM main.sqlite_sequence");
        made.run("INSERT INTO main.sqlite_sequence SELECT * FROM source.sqlite_sequence");
    }
    for (const std::string& sql : schema("type <> 'table'")) {
        made.run(sql);
    }
    for (const std::string name : {"user_version", "application_id"}) {
        made.run("PRAGMA main." + name + " = " + std::to_string(made.number("PRAGMA source." + name)));
    }
    made.run("COMMIT");
}

} // namespace dbservice
