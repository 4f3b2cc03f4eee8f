// Values go in and rows come out in two ways: through parameter and result objects, and straight between records and
// the statement. Nobody can tell them apart: same answers, log lines and file, same records.

#include "databaseservice/engine/recordio.h"
#include "support/lists.h"
#include "support/observed.h"
#include "support/storetest.h"

#include <limits>

using namespace testsupport;
using namespace DatabaseService;

namespace {

using namespace std::string_literals;

struct Item {
    int64 id = -1;
    std::string text = "unset";
    std::int32_t small = -1;
    std::string other = "unset";
};

constexpr std::array itemTable{
    column<&Item::id>("id", "INTEGER", 1),
    column<&Item::text>("text", "TEXT", 1),
    column<&Item::small>("small", "INTEGER", 1),
    column<&Item::other>("other", "TEXT", 1),
};
constexpr auto itemColumns = pick(itemTable, 1U);

/// What can be seen of a call: its answer, the rows written or read, and its log.
using Outcome = std::tuple<bool, Rows, std::vector<std::string>>;

struct EngineTwoWays : StoreTest {
    EngineTwoWays()
    {
        m_store.onOpen = [](sqlite3* db) { sqlite3_limit(db, SQLITE_LIMIT_LENGTH, 1000); };
    }

    Outcome write(const std::string& setup, const std::vector<Item>& items, const std::string& sql, bool straight)
    {
        m_file.exec("DROP TABLE IF EXISTS item; " + setup);
        const Statement<Item> statement{sql, parametersOf(itemColumns)};
        std::list<DatabaseBindParameter> binds;
        for (const Item& item : items) {
            DatabaseBindParameter& bind = binds.emplace_back();
            bind.Bind(item.id, ":id");
            bind.Bind(item.text, ":text");
            bind.Bind(item.small, ":small");
            bind.Bind(item.other, ":other");
        }
        const bool result = straight ? writeRecords(m_store, statement, items) : m_store.Execute(sql, binds);
        return {result, m_file.query("SELECT * FROM item"), m_log.take()};
    }

    Outcome read(const std::string& setup, const std::string& sql, bool straight)
    {
        m_file.exec("DROP TABLE IF EXISTS item; " + setup);
        std::vector<Item> items;
        bool result = false;
        if (straight) {
            result = readRecords(m_store, sql, nullptr, itemColumns, items);
        } else {
            std::list<DatabaseQueryResult*>* list = nullptr;
            result = m_store.Query(sql, list);
            for (DatabaseQueryResult* row : *list) { // braces keep the order of the calls
                items.push_back(
                    {row->GetInt(), row->GetString(), static_cast<std::int32_t>(row->GetInt()), row->GetString()});
            }
            m_store.FreeQueryResult(list);
        }
        const auto cells = [](const Item& item) -> Rows::value_type {
            return {std::to_string(item.id), item.text, std::to_string(item.small), item.other};
        };
        return {result, mapped(items, cells), m_log.take()};
    }

    SqliteFile m_file{path(L"engine.dat")};
    PlainStore m_store;
};

} // namespace

TEST_F(EngineTwoWays, Writes)
{
    std::vector<Item> items{{std::numeric_limits<int64>::min(), "12.5", std::numeric_limits<std::int32_t>::min(), "a"},
                            {std::numeric_limits<int64>::max(), "x", std::numeric_limits<std::int32_t>::max(), "007"}};
    for (const std::string& text : {""s, "a\0b"s, "\0x"s, "\xFF"s, "a\xC3"s, "\xED\xA0\x80"s, "\xF0\x9F\x98\0\xFF"s,
                                    "\xE5\x90\x8D"s, std::string(400, 'l')}) {
        items.push_back({static_cast<int64>(items.size()), text, 0, text});
    }
    const std::vector<Item> failing{{1, "a", 0, ""}, {1, "b", 0, ""}, {2, "c", 0, ""}, {2, "d", 0, ""}};
    const std::vector<Item> tooLarge{{1, "a", 0, ""}, {2, std::string(2000, 'l'), 0, "\xFF"}, {3, "c", 0, ""}};
    const std::string plain = "CREATE TABLE item(id INTEGER PRIMARY KEY, text TEXT, small INTEGER, other TEXT)";
    const std::string insert = "INSERT INTO item VALUES(:id, :text, :small, :other)";
    const std::tuple<const char*, std::string, std::vector<Item>, std::size_t, std::string> cases[] = {
        {"values", plain, items, items.size(), insert},
        {"no types", "CREATE TABLE item(id, text, small, other)", items, items.size(), insert},
        {"nothing", plain, {}, 0, insert},
        {"failed steps", plain, failing, 2, insert},
        {"value too large", plain, tooLarge, 0, insert},
        {"unknown parameter", plain, failing, 0, "INSERT INTO item(id, text) VALUES(:id, :text)"},
    };
    for (const auto& [name, setup, records, rows, sql] : cases) {
        SCOPED_TRACE(name);
        const Outcome objects = write(setup, records, sql, false);
        EXPECT_EQ(std::get<Rows>(objects).size(), rows);
        EXPECT_EQ(objects, write(setup, records, sql, true));
    }
}

TEST_F(EngineTwoWays, Reads)
{
    const std::string values =
        "(1, 'one', 2, 'other'), (-9223372036854775807 - 1, '', 4294967297, x'00'), "
        "(9223372036854775807, NULL, -2147483649, 7), (NULL, 12.5, NULL, -1e300), "
        "('42 apples', 42, ' -7.9', NULL), ('apples', 0, '99999999999999999999', 1.0), "
        "(12.9, x'6162', -0.5, 'last'), ('-99999999999999999999', 'x', 0x7F, '1e5'), "
        "('4' || char(0) || '2', 'a' || char(0) || 'b', char(0), ''), "
        "(CAST(x'3432FF' AS TEXT), CAST(x'61FF62C3' AS TEXT), CAST(x'FF37' AS TEXT), CAST(x'EDA080' AS TEXT)), "
        "(char(0x663), char(0x1F600), char(160) || '7', CAST(x'F09F98' AS TEXT))";
    const auto table = [&](const std::string& columns) {
        return "CREATE TABLE item(" + columns + "); INSERT INTO item VALUES" + values;
    };
    const std::string plain = table("id INTEGER, text TEXT, small INTEGER, other TEXT");
    const std::tuple<const char*, std::string, std::size_t> cases[] = {
        {"SELECT * FROM item", plain, 11},
        {"SELECT * FROM item", table("id TEXT, text INTEGER, small TEXT, other INTEGER"), 11},
        {"SELECT * FROM item", table("id REAL, text BOOL, small INT, other VARCHAR"), 11},
        {"SELECT * FROM item", table("id, text, small, other"), 11},
        {"SELECT id, text FROM item", plain, 11},
        {"SELECT *, * FROM item", plain, 11},
        {"SELECT abs(id), text, small, other FROM item", plain, 1},
        {"SELECT nothing FROM item", plain, 0},
    };
    for (const auto& [sql, setup, rows] : cases) {
        SCOPED_TRACE(setup.substr(0, 70) + sql);
        const Outcome objects = read(setup, sql, false);
        EXPECT_EQ(std::get<Rows>(objects).size(), rows);
        EXPECT_EQ(objects, read(setup, sql, true));
    }
}
