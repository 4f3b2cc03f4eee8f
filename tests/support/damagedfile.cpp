#include "support/damagedfile.h"

#include "support/filebytes.h"
#include "support/sqlitefile.h"

#include <iterator>
#include <regex>
#include <stdexcept>
#include <string>

namespace testsupport {

namespace {

constexpr std::size_t pageSize = 4096;

// What a hand does to the bytes.
using Hand = void (*)(std::string& bytes, std::mt19937& random);
std::size_t somePage(const std::string& bytes, std::mt19937& random)
{
    return random() % (bytes.size() / pageSize) * pageSize;
}
void spoil(std::string& bytes, std::mt19937& random, std::size_t from, std::size_t size, int count)
{
    for (; count > 0; --count) {
        bytes[from + random() % size] = static_cast<char>(random());
    }
}
const Hand hands[] = {
    [](auto& bytes, auto& random) {
        char& byte = bytes[random() % bytes.size()];
        byte = static_cast<char>(byte ^ (1 << random() % 8));
    },
    [](auto& bytes, auto& random) { spoil(bytes, random, 0, bytes.size(), 20); },
    [](auto& bytes, auto& random) { spoil(bytes, random, somePage(bytes, random), 120, 6); },
    [](auto& bytes, auto& random) { spoil(bytes, random, 16, 84, 2); },
    [](auto& bytes, auto& random) { bytes.replace(somePage(bytes, random), pageSize, pageSize, '\0'); },
    [](auto& bytes, auto& random) {
        bytes.replace(somePage(bytes, random), pageSize, bytes.substr(somePage(bytes, random), pageSize));
    },
    [](auto& bytes, auto& random) { bytes.resize(random() % bytes.size()); },
};

// What SQL does to a file: T is one of its tables, C one of the table's columns.
const char* const schemes[] = {
    "DROP TABLE T; CREATE TABLE T(C)",
    "DROP TABLE T; CREATE TABLE T(C BLOB PRIMARY KEY, other) WITHOUT ROWID",
    "ALTER TABLE T RENAME TO old; CREATE VIEW T AS SELECT * FROM old",
    "ALTER TABLE T RENAME TO old; CREATE VIEW T AS SELECT * FROM T",
    "ALTER TABLE T RENAME TO old; CREATE VIRTUAL TABLE T USING fts5(a, b)",
    "ALTER TABLE T RENAME COLUMN C TO other",
    "ALTER TABLE T ADD COLUMN made GENERATED ALWAYS AS (1 / 0 || C) VIRTUAL",
    "CREATE INDEX more ON T(abs(C))",
    "CREATE TRIGGER harm AFTER INSERT ON T BEGIN DELETE FROM T; END",
    "CREATE TRIGGER harm BEFORE INSERT ON T BEGIN SELECT RAISE(ROLLBACK, 'no'); END",
    "CREATE TRIGGER harm BEFORE UPDATE ON T BEGIN SELECT RAISE(FAIL, 'no'); END",
    "CREATE TRIGGER harm AFTER UPDATE ON T BEGIN UPDATE T SET C = zeroblob(9000); END",
    "CREATE TRIGGER harm BEFORE DELETE ON T BEGIN SELECT RAISE(ABORT, 'no'); END",
    "UPDATE OR IGNORE T SET C = x'00FF80'",
    "UPDATE OR IGNORE T SET C = 9e999",
    "UPDATE OR IGNORE T SET C = CAST(x'FFFE61C0' AS TEXT)",
    "UPDATE OR IGNORE T SET C = printf('%.*c', 300000, 'x')",
    "UPDATE OR IGNORE T SET C = '''; DROP TABLE T; --'",
    "PRAGMA writable_schema = ON; UPDATE sqlite_master SET sql = 'CREATE TABLE T(' WHERE name = 'T'",
    "PRAGMA writable_schema = ON; UPDATE sqlite_master SET rootpage = 2",
    "PRAGMA writable_schema = ON; UPDATE sqlite_master SET sql = replace(sql, 'TEXT', 'INT')",
    "PRAGMA writable_schema = ON; INSERT INTO sqlite_master SELECT * FROM sqlite_master",
    "PRAGMA journal_mode = WAL",
    "PRAGMA application_id = 7; PRAGMA user_version = -1; PRAGMA page_size = 512; VACUUM",
};

std::string drawn(const Rows& rows, std::mt19937& random)
{
    const std::string& cell = rows.at(random() % rows.size()).at(0);
    return cell.substr(1, cell.size() - 2);
}

} // namespace

void damageWithSql(const std::filesystem::path& file, const std::string& sql, std::mt19937& random)
{
    try {
        SqliteFile store(file, SqliteFile::Collation::NameCompare);
        const std::string table = drawn(store.query("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT "
                                                    "LIKE 'sqlite%'"),
                                        random);
        const std::string column = drawn(store.query("SELECT name FROM pragma_table_info('" + table + "')"), random);
        const std::string onTable = std::regex_replace(sql, std::regex("\\bT\\b"), table);
        store.exec(std::regex_replace(onTable, std::regex("\\bC\\b"), '[' + column + ']'));
    } catch (const std::runtime_error&) { // refused: as far as it came
    }
}

std::size_t waysToDamage()
{
    return std::size(hands) * 2 + std::size(schemes); // hands come twice as often
}

void damageFile(const std::filesystem::path& file, std::size_t way, std::mt19937& random)
{
    if (way < std::size(hands) * 2) {
        std::string bytes = bytesOf(file);
        hands[way / 2](bytes, random);
        writeBytes(file, bytes);
    } else {
        damageWithSql(file, schemes[way - std::size(hands) * 2], random);
    }
}

} // namespace testsupport
