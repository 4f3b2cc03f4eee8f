#include "plainprogram.h"

#include "databaseservice/clientconstants.h"
#include "databaseservice/drivecolumns.h"
#include "databaseservice/driverdbproviderbase.h"
#include "folderwalk.h"
#include "platform/text.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <array>
#include <cstdint>
#include <sqlite3.h>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace benchmarks {

namespace {

namespace constants = DatabaseService::ClientConstants;
using constants::ExtensionGroup;
using Columns = DatabaseService::DriveDataColumns;

constexpr auto allColumns = pick(Columns::table, Columns::All);

constexpr std::array indexes{
    "CREATE INDEX nameIndex ON DriveDataTable (name COLLATE NameCompare)",
    "CREATE INDEX mimeTypeIndex ON DriveDataTable (mimeType)",
    "CREATE INDEX sizeIndex ON DriveDataTable (size)",
    "CREATE INDEX modifiedTimeIndex ON DriveDataTable (modifiedTime)",
    "CREATE INDEX fileExtSignIndex ON DriveDataTable (fileExtSign)",
    "CREATE INDEX parentIdIndex ON DriveDataTable (parentId)",
};

constexpr bool isText(const DatabaseService::Column<DatabaseService::DriveDataTable>& column)
{
    return column.declaration.starts_with("TEXT");
}

/// The parameter of a column in a statement that names all.
consteval int parameterOf(std::string_view name)
{
    int parameter = 0;
    for (const auto* column : allColumns) {
        ++parameter;
        if (column->name == name) {
            return parameter;
        }
    }
    throw std::invalid_argument("no such column");
}

class Database {
public:
    explicit Database(const std::string& file)
    {
        const int opened = sqlite3_open(file.c_str(), &m_db);
        std::string error;
        if (opened != SQLITE_OK || !DatabaseService::DriverDBProviderBase::BindNameCompare(m_db, error)) {
            fail();
        }
    }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    ~Database() { sqlite3_close_v2(m_db); }

    void run(const std::string& sql) const
    {
        if (sqlite3_exec(m_db, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
            fail();
        }
    }

    [[noreturn]] void fail() const { throw std::runtime_error(sqlite3_errmsg(m_db)); }
    sqlite3* handle() const { return m_db; }

private:
    sqlite3* m_db = nullptr;
};

class Query {
public:
    Query(const Database& database, const std::string& sql) : m_database(database)
    {
        if (sqlite3_prepare_v2(database.handle(), sql.c_str(), -1, &m_statement, nullptr) != SQLITE_OK) {
            database.fail();
        }
    }
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;
    ~Query() { sqlite3_finalize(m_statement); }

    bool step() const
    {
        const int code = sqlite3_step(m_statement);
        if (code != SQLITE_ROW && code != SQLITE_DONE) {
            m_database.fail();
        }
        return code == SQLITE_ROW;
    }
    void reset() const { sqlite3_reset(m_statement); }
    void bind(int parameter, std::int64_t value) const { sqlite3_bind_int64(m_statement, parameter, value); }
    /// Taken where it lies.
    void bind(int parameter, std::string_view value) const
    {
        sqlite3_bind_text(m_statement, parameter, value.data(), static_cast<int>(value.size()), SQLITE_STATIC);
    }
    std::int64_t number(int column) const { return sqlite3_column_int64(m_statement, column); }
    std::string_view text(int column) const
    {
        const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
        return {text == nullptr ? "" : text, static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column))};
    }

private:
    const Database& m_database;
    sqlite3_stmt* m_statement = nullptr;
};

std::string idOf(std::string_view path)
{
    XXH128_canonical_t bytes;
    XXH128_canonicalFromHash(&bytes, XXH3_128bits(path.data(), path.size()));
    std::string text(32, '0');
    for (std::size_t i = 0; i < text.size(); ++i) {
        text[i] = "0123456789abcdef"[i % 2 == 0 ? bytes.digest[i / 2] >> 4 : bytes.digest[i / 2] & 15];
    }
    return text;
}

int classOf(ExtensionGroup group)
{
    switch (group) {
    case ExtensionGroup::Picture:
    case ExtensionGroup::RawPhoto:
        return 2;
    case ExtensionGroup::Video:
        return 4;
    case ExtensionGroup::Audio:
        return 8;
    case ExtensionGroup::Document:
    case ExtensionGroup::Spreadsheet:
    case ExtensionGroup::Presentation:
        return 16;
    default:
        return 32;
    }
}

std::string_view mimeTypeOf(const WalkedEntry& entry)
{
    using Kind = WalkedEntry::Kind;
    switch (entry.kind) {
    case Kind::Folder:
        return constants::folderMimeType;
    case Kind::Link:
        return constants::linkMimeType;
    case Kind::Fifo:
        return constants::fifoMimeType;
    case Kind::Socket:
        return constants::socketMimeType;
    case Kind::Block:
        return constants::blockDeviceMimeType;
    case Kind::Character:
        return constants::characterDeviceMimeType;
    case Kind::File:
        break;
    }
    return constants::mimeTypeOf(entry.name);
}

std::string insertText()
{
    std::string columns;
    std::string values;
    for (const auto* column : allColumns) {
        columns += (columns.empty() ? "" : ",") + std::string(column->name);
        values += values.empty() ? "?" : ",?";
    }
    return "INSERT INTO DriveDataTable (" + columns + ") VALUES (" + values + ")";
}

/// The columns that differ from row to row are bound for each row, all others once.
class RowWriter {
public:
    RowWriter(const Database& database, std::string folder)
        : m_insert(database, insertText()),
          m_folder(std::move(folder))
    {
        int parameter = 0;
        for (const auto* column : allColumns) {
            ++parameter;
            isText(*column) ? m_insert.bind(parameter, "") : m_insert.bind(parameter, 0);
        }
        m_insert.bind(parameterOf("kind"), "drive#file");
        m_insert.bind(parameterOf("needToDisplay"), 1);
        WalkedEntry root;
        const std::string name = m_folder.substr(m_folder.rfind('/') + 1);
        root.name = name;
        root.kind = WalkedEntry::Kind::Folder;
        root.modifiedNanoseconds = modifiedNanoseconds(m_folder);
        write(root, "", m_folder);
    }

    void write(const WalkedEntry& entry)
    {
        if (entry.parent != m_parent || m_parentId.empty()) {
            m_parent = entry.parent;
            m_parentId = idOf(m_parent);
        }
        m_path = m_folder;
        m_path += '/';
        m_path += entry.path;
        write(entry, m_parentId, m_path);
    }

private:
    void write(const WalkedEntry& entry, std::string_view parentId, std::string_view path)
    {
        const std::string id = idOf(entry.path);
        const std::string version = std::to_string(entry.modifiedNanoseconds);
        const std::int64_t time = entry.modifiedNanoseconds / 1'000'000'000;
        const bool isFolder = entry.kind == WalkedEntry::Kind::Folder;
        const ExtensionGroup group =
            entry.kind == WalkedEntry::Kind::File ? constants::groupOf(entry.name) : ExtensionGroup::Unknown;
        const std::string name = platform::isUtf8(entry.name) ? std::string() : platform::repairUtf8(entry.name);
        const std::string whole = platform::isUtf8(path) ? std::string() : platform::repairUtf8(path);
        m_insert.reset();
        m_insert.bind(parameterOf("fileId"), id);
        m_insert.bind(parameterOf("name"), name.empty() ? entry.name : name);
        m_insert.bind(parameterOf("mimeType"), mimeTypeOf(entry));
        m_insert.bind(parameterOf("size"), entry.size);
        m_insert.bind(parameterOf("contentVersion"), version);
        m_insert.bind(parameterOf("parentId"), parentId);
        m_insert.bind(parameterOf("createdTime"), time);
        m_insert.bind(parameterOf("modifiedTime"), time);
        m_insert.bind(parameterOf("localAbsolutePath"), whole.empty() ? path : whole);
        m_insert.bind(parameterOf("fileExtSign"), static_cast<int>(group));
        m_insert.bind(parameterOf("classIndex"), isFolder ? 0 : classOf(group));
        m_insert.step();
    }

    Query m_insert;
    std::string m_folder;
    std::string m_parent;
    std::string m_parentId;
    std::string m_path;
};

} // namespace

void PlainProgram::fill(const std::string& folder) const
{
    const Database database(m_store);
    database.run("BEGIN IMMEDIATE");
    database.run(createTable("CREATE TABLE DriveDataTable(", Columns::table));
    for (const char* index : indexes) {
        database.run(index);
    }
    {
        RowWriter rows(database, folder);
        walkFolder(folder, [&](const WalkedEntry& entry) { rows.write(entry); });
    }
    database.run("COMMIT");
}

void PlainProgram::walkAndRead(const std::string& folder) const
{
    std::int64_t seen = 0;
    walkFolder(folder, [&](const WalkedEntry& entry) { seen += entry.size + entry.modifiedNanoseconds; });

    const Database database(m_store);
    const Query rows(database, DatabaseService::selectText(allColumns, "FROM DriveDataTable"));
    std::array<std::string, allColumns.size()> texts;
    while (rows.step()) {
        int index = 0;
        for (const auto* column : allColumns) {
            if (isText(*column)) {
                texts[static_cast<std::size_t>(index)] = rows.text(index);
            } else {
                seen += rows.number(index);
            }
            ++index;
        }
    }
    if (seen == 0) {
        throw std::runtime_error("there is nothing in " + folder);
    }
}

void PlainProgram::count() const
{
    const std::string head = "select count(*) from DriveDataTable where ";
    const std::string live = "recycled = 0 and directlyRecycled = 0 and softDelBatchId = 0";
    const std::string folder = " and mimeType = 'application/vnd.tessix-apps.folder'";
    const std::string file = " and mimeType != 'application/vnd.tessix-apps.folder'";
    const std::string shown = " and (needToDisplay = 0 or needToDisplay = 1)";
    const std::string inBin = " and restoreBatchId = 0 and hardDelBatchId = 0";
    std::vector<std::string> statements{"select count(fileId) from DriveDataTable", head + live, head + live + folder};
    for (const char* number : {"2", "4", "8", "16", "32"}) {
        statements.push_back(head + "classIndex = " + number + file + " and " + live + shown);
    }
    statements.insert(statements.end(),
                      {head + "recycled = 1", head + "recycled = 1" + folder,
                       head + "directlyRecycled = 1" + folder + inBin + shown,
                       head + "directlyRecycled = 1" + file + inBin + " and recycledTime > 0" + shown,
                       head + "directlyRecycled = 1" + shown});
    const Database database(m_store);
    for (const std::string& statement : statements) {
        const Query query(database, statement);
        query.step();
    }
}

void PlainProgram::countBelowRoot() const
{
    const Database database(m_store);
    const Query query(database,
                      "WITH RECURSIVE items(fileId, recycled) AS (SELECT fileId, recycled FROM DriveDataTable WHERE "
                      "parentId = '' UNION ALL SELECT DriveDataTable.fileId, DriveDataTable.recycled FROM "
                      "DriveDataTable JOIN items ON DriveDataTable.parentId = items.fileId) SELECT COUNT(*) FROM items "
                      "WHERE recycled = '0'");
    query.step();
}

void requireSameRows(const std::string& store, const std::string& other)
{
    const Database database(store);
    database.run("ATTACH '" + other + "' AS other");
    const std::string columns = DatabaseService::selectText(allColumns, "FROM ");
    const std::string difference = "SELECT (SELECT COUNT(*) FROM main.DriveDataTable) - (SELECT COUNT(*) FROM "
                                   "other.DriveDataTable), (SELECT COUNT(*) FROM (" +
        columns + "main.DriveDataTable EXCEPT " + columns +
        "other.DriveDataTable)), (SELECT COUNT(*) FROM (SELECT name FROM other.sqlite_master WHERE type = 'index' "
        "EXCEPT SELECT name FROM main.sqlite_master WHERE type = 'index'))";
    const Query query(database, difference);
    query.step();
    if (query.number(0) != 0 || query.number(1) != 0 || query.number(2) != 0) {
        throw std::runtime_error("the tool and the plain program have filled their stores differently: " +
                                 std::to_string(query.number(0)) + " rows more, " + std::to_string(query.number(1)) +
                                 " others, " + std::to_string(query.number(2)) + " indexes missing");
    }
}

} // namespace benchmarks
