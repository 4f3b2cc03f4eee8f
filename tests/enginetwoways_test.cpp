// Values go in and rows come out in two ways: through parameter and result objects, and straight between records and
// the statement. Nobody can tell them apart: same answers, statements, log lines and file, same records.

#include "databaseservice/recordio.h"
#include "support/drivefields.h"
#include "support/observed.h"
#include "support/storetest.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>

using namespace testsupport;
using DatabaseService::DatabaseBindParameter;
using DatabaseService::DatabaseQueryResult;
using DatabaseService::DriveDataTable;
using DatabaseService::int64;

namespace {

using Binds = std::list<DatabaseBindParameter>;
using Results = std::list<DatabaseQueryResult*>;

struct Item {
    int64 id = 0;
    std::string text;
    std::int32_t small = 0;
    std::string other;
};

constexpr std::array itemTable{
    DatabaseService::column<&Item::id>("id", "INTEGER", 1),
    DatabaseService::column<&Item::text>("text", "TEXT", 1),
    DatabaseService::column<&Item::small>("small", "INTEGER", 1),
    DatabaseService::column<&Item::other>("other", "TEXT", 1),
};
constexpr auto itemColumns = DatabaseService::pick(itemTable, 1U);

enum class Given { Nothing, Connection, Statement, Both };

/// Everything that can be seen of a call.
struct Outcome {
    bool result = false;
    Rows records;
    std::vector<std::string> log;
    std::vector<std::string> statements;
    bool inTransaction = false;
    Rows file;
    std::string table;
};

void expectSame(const Outcome& objects, const Outcome& straight)
{
    EXPECT_EQ(objects.result, straight.result);
    EXPECT_EQ(objects.records, straight.records);
    EXPECT_EQ(objects.log, straight.log);
    EXPECT_EQ(objects.statements, straight.statements);
    EXPECT_EQ(objects.inTransaction, straight.inTransaction);
    EXPECT_EQ(objects.file, straight.file);
}

/// What surrounds a call: the file before it, and what is handed to the engine.
struct Setting {
    std::string setup = {};
    std::string sql = {};
    Given given = Given::Nothing;
    std::function<void(sqlite3*)> onOpen = {};
    std::string between = {};   ///< run on another connection after the caller's statement is prepared
    std::string onCallers = {}; ///< run on the caller's connection before the call
};

class EngineTwoWays : public StoreTest {
protected:
    /// Each run has a folder of its own, since a failed commit leaves its file locked.
    std::filesystem::path freshFolder()
    {
        m_runFolder = m_folder.path() / std::to_string(++m_runs);
        std::filesystem::create_directory(m_runFolder);
        useFolder(m_runFolder);
        return m_runFolder;
    }

    std::vector<std::string> takeLog()
    {
        std::vector<std::string> lines = m_log.take();
        const std::string folder = platform::toUtf8(m_runFolder);
        for (std::string& line : lines) {
            if (const std::size_t at = line.find(folder); at != std::string::npos) {
                line.replace(at, folder.size(), "FOLDER");
            }
        }
        return lines;
    }

    template <class Call> Outcome run(const Setting& setting, const std::string& table, Call call)
    {
        SqliteFile file(freshFolder() / "engine.dat");
        file.exec(setting.setup);
        PlainStore store;
        store.onOpen = setting.onOpen;
        sqlite3* db = setting.given == Given::Nothing ? nullptr : store.GetDbConnection();
        const bool prepared = setting.given == Given::Statement || setting.given == Given::Both;
        sqlite3_stmt* stmt = prepared ? store.PrepareSql(db, setting.sql) : nullptr;
        file.exec(setting.between);
        sqlite3_exec(db, setting.onCallers.c_str(), nullptr, nullptr, nullptr);
        takeLog();
        store.trace.take();

        Outcome outcome;
        outcome.result = call(store, setting.given == Given::Statement ? nullptr : db, stmt, outcome.records);
        outcome.log = takeLog();
        outcome.statements = store.trace.take();
        if (db != nullptr) {
            outcome.inTransaction = sqlite3_get_autocommit(db) == 0;
            store.FinalizeStatment(stmt);
            store.CloseDatabase(db);
            takeLog();
        }
        if (!table.empty()) {
            outcome.file = file.query("SELECT * FROM " + table);
        }
        return outcome;
    }

    int m_runs = 0;
    std::filesystem::path m_runFolder;
};

bool execute(PlainStore& store, sqlite3* db, sqlite3_stmt* stmt, const std::string& sql, Binds& binds)
{
    if (db == nullptr) {
        return stmt == nullptr ? store.Execute(sql, binds) : store.Execute(stmt, binds);
    }
    return stmt == nullptr ? store.Execute(db, sql, binds) : store.Execute(db, stmt, binds);
}

bool query(PlainStore& store, sqlite3* db, sqlite3_stmt* stmt, const std::string& sql, Results*& rows)
{
    if (db == nullptr) {
        return stmt == nullptr ? store.Query(sql, rows) : store.Query(stmt, rows);
    }
    return stmt == nullptr ? store.Query(db, sql, rows) : store.Query(db, stmt, rows);
}

bool query(PlainStore& store, sqlite3* db, sqlite3_stmt* stmt, const std::string& sql, DatabaseBindParameter& bind,
           Results*& rows)
{
    if (db == nullptr) {
        return stmt == nullptr ? store.Query(sql, bind, rows) : store.Query(stmt, bind, rows);
    }
    return stmt == nullptr ? store.Query(db, sql, bind, rows) : store.Query(db, stmt, bind, rows);
}

std::vector<std::string> cellsOf(const Item& item)
{
    return {std::to_string(item.id), textCell(item.text), std::to_string(item.small), textCell(item.other)};
}

std::string withNul(const char* head, const char* tail)
{
    return std::string(head) + '\0' + tail;
}

/// Texts that have to be repaired or cut on one of their ways.
const std::string uglyTexts[] = {"",
                                 withNul("a", "b"),
                                 withNul("", "x"),
                                 "\xFF",
                                 "a\xC3",
                                 "\xED\xA0\x80", // surrogate
                                 withNul("\xF0\x9F\x98", "\xFF"),
                                 "\xE5\x90\x8D",
                                 std::string(1 << 14, 'l')};

} // namespace

TEST_F(EngineTwoWays, Writes)
{
    const std::string plain = "CREATE TABLE item(id INTEGER PRIMARY KEY, text TEXT, small INTEGER, other TEXT);";
    const std::string deferred = "CREATE TABLE parent(id INTEGER PRIMARY KEY); CREATE TABLE item(id INTEGER REFERENCES "
                                 "parent DEFERRABLE INITIALLY DEFERRED, text TEXT, small INTEGER, other TEXT)";
    const auto insert = DatabaseService::insertStatement("INSERT INTO item (", itemColumns);
    // clang-format off
    const auto limit = [](sqlite3* db) { sqlite3_limit(db, SQLITE_LIMIT_LENGTH, 1000); };
    const auto foreignKeys = [](sqlite3* db) { sqlite3_exec(db, "PRAGMA foreign_keys=ON", nullptr, nullptr, nullptr); };
    // clang-format on
    const std::vector<Item> two{{1, "one", -1, "x"}, {2, "12.5", 2147483647, "007"}};
    const std::vector<Item> failing{{1, "a", 0, ""}, {1, "b", 0, ""}, {2, "c", 0, ""}, {2, "d", 0, ""}};
    std::vector<Item> ugly{{std::numeric_limits<int64>::min(), "", std::numeric_limits<std::int32_t>::min(), ""},
                           {std::numeric_limits<int64>::max(), "", std::numeric_limits<std::int32_t>::max(), ""}};
    for (const std::string& text : uglyTexts) {
        ugly.push_back({static_cast<int64>(ugly.size()), text, 0, text});
    }
    std::vector<Item> large = two;
    large.insert(large.begin() + 1, {3, std::string(2000, 'l'), 0, "\xFF"});

    struct Case {
        const char* name;
        Setting setting;
        std::vector<Item> items;
        bool result = true;
        std::size_t rows = 2;
    };
    const Case cases[] = {
        {"plain", {plain}, two},
        {"no types", {"CREATE TABLE item(id, text, small, other)"}, ugly, true, ugly.size()},
        {"numbers for text", {"CREATE TABLE item(id TEXT, text INTEGER, small TEXT, other INTEGER)"}, two},
        {"real numbers", {"CREATE TABLE item(id REAL, text REAL, small REAL, other REAL)"}, two},
        {"ugly text", {plain}, ugly, true, ugly.size()},
        {"ugly text, caller's statement", {plain, "", Given::Both}, ugly, true, ugly.size()},
        {"nothing", {plain}, {}, true, 0},
        {"nothing, caller's connection", {plain, "", Given::Connection}, {}, true, 0},
        {"nothing, caller's statement", {plain, "", Given::Statement}, {}, true, 0},
        {"failed steps", {plain}, failing},
        {"failed steps, caller's connection", {plain, "", Given::Connection}, failing},
        {"failed steps, caller's statement", {plain, "", Given::Both}, failing},
        {"all steps fail", {"CREATE TABLE item(id CHECK(id < 0), text TEXT, small, other TEXT)"}, two, true, 0},
        {"failed bind", {plain, "INSERT INTO item(id, text) VALUES(:id, :text)"}, two, false, 0},
        {"failed bind, caller's", {plain, "INSERT INTO item(small) VALUES(:small)", Given::Both}, two, false, 0},
        {"value too large", {plain, "", Given::Nothing, limit}, large, false, 0},
        {"value too large, caller's connection", {plain, "", Given::Connection, limit}, large, false, 0},
        {"no such column", {"CREATE TABLE item(id INTEGER, text TEXT, small INTEGER)"}, two, false, 0},
        {"transaction open", {plain, "", Given::Connection, {}, "", "BEGIN"}, two, false, 0},
        {"transaction open, caller's statement", {plain, "", Given::Both, {}, "", "BEGIN"}, two, false, 0},
        {"changed schema", {plain, "", Given::Both, {}, "ALTER TABLE item ADD COLUMN more"}, failing, true, 0},
        {"failed commit", {deferred, "", Given::Nothing, foreignKeys}, two, false, 0},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        Setting setting = test.setting;
        DatabaseService::Statement<Item> statement = insert;
        if (setting.sql.empty()) {
            setting.sql = statement.sql;
        } else {
            statement.sql = setting.sql;
        }
        const Outcome objects = run(setting, "item", [&](auto& store, auto* db, auto* stmt, Rows&) {
            Binds binds;
            for (const Item& item : test.items) {
                DatabaseBindParameter& bind = binds.emplace_back();
                bind.Bind(item.id, ":id");
                bind.Bind(item.text, ":text");
                bind.Bind(item.small, ":small");
                bind.Bind(item.other, ":other");
            }
            return execute(store, db, stmt, setting.sql, binds);
        });
        const Outcome straight = run(setting, "item", [&](auto& store, auto* db, auto* stmt, Rows&) {
            DatabaseService::RecordSource<Item, Item> source(statement, test.items);
            return store.Execute(db, stmt, stmt == nullptr ? setting.sql : "", &source, nullptr);
        });
        expectSame(objects, straight);
        EXPECT_EQ(objects.result, test.result);
        EXPECT_EQ(objects.file.size(), test.rows);
    }
}

TEST_F(EngineTwoWays, Reads)
{
    struct Case {
        const char* name;
        std::string setup;
        std::string sql = "SELECT * FROM item";
        std::optional<int64> id = {};
        std::size_t rows = 9;
        std::string between = {};
    };
    const std::string values = "(1, 'one', 2, 'other'), (-9223372036854775807 - 1, '', 4294967297, x'00'), "
                               "(9223372036854775807, NULL, -2147483649, 7), (NULL, 12.5, NULL, -1e300), "
                               "('42 apples', 42, ' -7.9', NULL), ('apples', 0, '99999999999999999999', 1.0), "
                               "(12.9, x'6162', -0.5, 'last'), ('-99999999999999999999', 'x', 0x7F, '1e5'), "
                               "(x'31', 'behind a blob', 3, 'shifted')";
    const auto table = [&](const std::string& columns) {
        return "CREATE TABLE item(" + columns + "); INSERT INTO item VALUES" + values;
    };
    const std::string plain = table("id INTEGER, text TEXT, small INTEGER, other TEXT");
    const Case cases[] = {
        {"plain", plain},
        {"kinds swapped", table("id TEXT, text INTEGER, small TEXT, other INTEGER")},
        {"real numbers", table("id REAL, text REAL, small REAL, other REAL")},
        {"NULL in front of others", table("id REAL, text BOOL, small INT, other VARCHAR")},
        {"types with lengths", table("id INTEGER(8), text VARCHAR(10), small varchar, other BLOB")},
        {"no types", table("id, text, small, other")},
        {"expressions", plain, "SELECT id + 1, NULL, text || 'x', count(*) FROM item GROUP BY rowid"},
        {"too few columns", plain, "SELECT id, text FROM item"},
        {"too many columns", plain, "SELECT *, * FROM item"},
        {"no rows", plain, "SELECT * FROM item WHERE 0", {}, 0},
        {"one by number", plain, "SELECT * FROM item WHERE id = :id", 1, 1},
        {"none by number", plain, "SELECT * FROM item WHERE id = :id", 2, 0},
        {"unknown parameter", plain, "SELECT * FROM item WHERE id = :other", 1, 0},
        {"failure on the way", plain, "SELECT abs(id), text, small, other FROM item", {}, 1},
        {"failure at once", plain, "SELECT abs(-9223372036854775807 - 1) FROM item", {}, 0},
        {"no such column", plain, "SELECT nothing FROM item", {}, 0},
        {"a write", plain, "UPDATE item SET small = 0", {}, 0},
        {"changed schema", plain, "SELECT * FROM item", {}, 9, "ALTER TABLE item ADD COLUMN more"},
        {"ugly text",
         "CREATE TABLE item(id TEXT, text TEXT, small TEXT, other TEXT); INSERT INTO item VALUES"
         "('4' || char(0) || '2', 'a' || char(0) || 'b', char(0), ''), "
         "(CAST(x'3432FF' AS TEXT), CAST(x'61FF62C3' AS TEXT), CAST(x'FF37' AS TEXT), CAST(x'EDA080' AS TEXT)), "
         "(char(0x663), char(0x1F600), char(160) || '7', CAST(x'F09F98' AS TEXT))",
         "SELECT * FROM item",
         {},
         3},
    };
    for (const Case& test : cases) {
        const std::string& sql = test.sql;
        for (const Given given : {Given::Nothing, Given::Connection, Given::Statement, Given::Both}) {
            SCOPED_TRACE(std::string(test.name) + ", " + std::to_string(static_cast<int>(given)));
            const Setting setting{test.setup, sql, given, {}, test.between};
            const int64 value = test.id.value_or(0);
            const Outcome objects = run(setting, "", [&](auto& store, auto* db, auto* stmt, Rows& records) {
                Results* list = nullptr;
                DatabaseBindParameter bind;
                bind.Bind(value, ":id");
                const bool result =
                    test.id ? query(store, db, stmt, sql, bind, list) : query(store, db, stmt, sql, list);
                for (DatabaseQueryResult* row : *list) {
                    Item item;
                    item.id = row->GetInt();
                    item.text = row->GetString();
                    item.small = static_cast<std::int32_t>(row->GetInt());
                    item.other = row->GetString();
                    records.push_back(cellsOf(item));
                }
                store.FreeQueryResult(list);
                return result;
            });
            const Outcome straight = run(setting, "", [&](auto& store, auto* db, auto* stmt, Rows& records) {
                std::vector<Item> items;
                DatabaseService::RecordSink<Item, Item> sink(itemColumns, items);
                const auto byId = DatabaseService::statementOf<int64>(sql, ":id");
                auto source = DatabaseService::oneValue(byId, value);
                const bool result =
                    store.Execute(db, stmt, stmt == nullptr ? sql : "", test.id ? &source : nullptr, &sink);
                std::ranges::transform(items, std::back_inserter(records),
                                       [](const Item& item) { return cellsOf(item); });
                return result;
            });
            expectSame(objects, straight);
            // What was compiled for the schema of before does not run after a change, and is not compiled anew.
            EXPECT_EQ(objects.records.size(), test.between.empty() || given == Given::Nothing ? test.rows : 0);
        }
    }
}

// The drive's own operations against parameter and result objects filled by hand.
TEST_F(EngineTwoWays, DriveOperations)
{
    std::vector<DriveDataTable> records{filledRecord("a", 1), filledRecord("b", 2), filledRecord("a", 3)};
    for (const std::string& text : uglyTexts) {
        DriveDataTable& record = records.emplace_back(filledRecord(text, 4));
        for (const DriveField& field : driveFields()) {
            if (field.text) {
                field.set(record, text);
            }
        }
    }
    std::vector<std::shared_ptr<DriveDataTable>> pointers;
    std::vector<std::string> ids;
    std::vector<std::pair<std::string, int>> statuses;
    for (const DriveDataTable& record : records) {
        pointers.push_back(std::make_shared<DriveDataTable>(record));
        ids.push_back(record.GetFileid());
        statuses.emplace_back(record.GetFileid(), record.GetCloudContentStatus());
    }
    struct Operation {
        const char* name;
        std::function<bool(ObservedDrive&)> call;
        bool reports = false; ///< the engine's answer
    };
    const Operation operations[] = {
        // clang-format off
        {"insert", [&](auto& drive) { return drive.InsertDriveDataBatch(records); }},
        {"replace", [&](auto& drive) { return drive.ReplaceDriveAllData(records); }},
        {"full update", [&](auto& drive) { return drive.UpdateDriveData(pointers); }},
        {"marker update", [&](auto& drive) { return drive.UpdateDriveOperData(records); }},
        {"display flag", [&](auto& drive) { return drive.UpdateCloudContentStatusByIds(statuses); }, true},
        {"delete", [&](auto& drive) { return drive.DeleteDriveDataById(ids); }},
        // clang-format on
    };
    const auto table = [](const std::string& type, const std::string& without = "") {
        std::string columns;
        for (const DriveField& field : driveFields()) {
            if (field.column != without) {
                columns += (columns.empty() ? "" : ", ") + field.column + ' ' + type;
            }
        }
        return "CREATE TABLE DriveDataTable(" + columns + ");";
    };
    // Rows whose cells all have one value, and one by one beside it.
    const auto rowsOf = [](const std::string& value) {
        std::string values;
        for (std::size_t at = 0; at < driveFields().size(); ++at) {
            values += (at == 0 ? "" : ", ") + value;
        }
        return "INSERT INTO DriveDataTable(" + driveColumnList() + ") VALUES(" + values + ");";
    };
    const std::string uglyRows = rowsOf("NULL") + rowsOf("x'4142'") + rowsOf("12.5") + rowsOf("'17 x'") + rowsOf("-3") +
        rowsOf("CAST(x'37FF' AS TEXT)") + rowsOf("'7' || char(0) || '8'") + rowsOf("9223372036854775807");

    // The statements come from a store as it should be.
    freshFolder();
    ObservedDrive good;
    good.InitDatabase();
    const auto statementOf = [&](const std::function<bool(ObservedDrive&)>& call) {
        good.trace.take();
        call(good);
        const std::string statement = good.trace.take().at(1);
        return statement.substr(statement.find(':') + 1);
    };
    std::map<std::string, std::string> statements;
    for (const Operation& operation : operations) {
        statements[operation.name] = statementOf(operation.call);
    }
    const std::string readAll = statementOf([](auto& drive) { return drive.GetALLDriveData().empty(); });
    takeLog();

    const std::pair<const char*, std::string> schemas[] = {
        {"text", table("TEXT") + uglyRows},
        {"integer", table("INTEGER") + uglyRows},
        {"real", table("REAL") + uglyRows},
        {"blob", table("BLOB") + uglyRows},
        {"no type", table("") + uglyRows},
        {"VARCHAR, unique", table("VARCHAR") + uglyRows + "CREATE UNIQUE INDEX u ON DriveDataTable(fileId);"},
        {"not null", table("TEXT NOT NULL")},
        {"column missing", table("TEXT", "needToDisplay")},
        {"no table", "CREATE TABLE other(x)"},
    };
    for (const auto& [schema, creation] : schemas) {
        const std::string& setup = creation;
        for (const Operation& operation : operations) {
            SCOPED_TRACE(std::string(schema) + ", " + operation.name);
            const std::string& sql = statements[operation.name];
            const auto byHand = [&](ObservedDrive& drive) {
                Binds binds;
                for (const DriveDataTable& record : records) {
                    DatabaseBindParameter& bind = binds.emplace_back();
                    for (const std::string& name : parametersIn(sql)) {
                        const auto& field = *std::ranges::find(driveFields(), name, &DriveField::column);
                        if (field.text) {
                            bind.Bind(field.get(record), ':' + name);
                        } else {
                            bind.Bind(int64{std::stoll(field.get(record))}, ':' + name);
                        }
                    }
                }
                return drive.Execute(sql, binds) || !operation.reports;
            };
            const auto outcomeOf = [&](const std::function<bool(ObservedDrive&)>& call) {
                SqliteFile file(freshFolder() / "DriveModuleData.dat");
                file.exec(setup);
                ObservedDrive drive;
                Outcome outcome;
                outcome.result = call(drive);
                outcome.log = takeLog();
                outcome.statements = drive.trace.take();
                if (setup.starts_with("CREATE TABLE DriveDataTable")) {
                    outcome.file = file.query("SELECT * FROM DriveDataTable");
                }
                return outcome;
            };
            expectSame(outcomeOf(byHand), outcomeOf(operation.call));
        }

        SCOPED_TRACE(std::string(schema) + ", read");
        ObservedDrive drive;
        drive.InsertDriveDataBatch(records);
        takeLog();
        drive.trace = {};
        const std::vector<DriveDataTable> straight = drive.GetALLDriveData();
        const std::vector<std::string> log = takeLog();
        const std::vector<std::string> trace = drive.trace.take();
        drive.trace = {};
        Results* list = nullptr;
        drive.Query(readAll, list);
        EXPECT_EQ(log, takeLog());
        EXPECT_EQ(trace, drive.trace.take());
        std::vector<DriveDataTable> byHand;
        for (DatabaseQueryResult* row : *list) {
            DriveDataTable& record = byHand.emplace_back();
            for (const DriveField& field : driveFields()) {
                if (field.text) {
                    field.set(record, row->GetString());
                } else {
                    const int64 number = row->GetInt();
                    field.set(record, std::to_string(field.bits == 64 ? number : static_cast<std::int32_t>(number)));
                }
            }
        }
        drive.FreeQueryResult(list);
        EXPECT_EQ(testsupport::cellsOf(byHand), testsupport::cellsOf(straight));
    }
}
