#include "plainprogram.h"

#include "databaseservice/clientconstants.h"
#include "databaseservice/driverdbprovider.h"
#include "folderwalk.h"
#include "platform/text.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <map>
#include <sqlite3.h>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace benchmarks {

namespace {

namespace constants = DatabaseService::ClientConstants;
using constants::ExtensionGroup;

class Database {
public:
    explicit Database(const std::string& file)
    {
        const int opened = sqlite3_open(file.c_str(), &m_db);
        std::string error;
        if (opened != SQLITE_OK || !DatabaseService::DriverDBProvider::BindNameCompare(m_db, error)) {
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
    void write() const
    {
        step();
        sqlite3_reset(m_statement);
    }
    void bind(int parameter, std::int64_t value) const { sqlite3_bind_int64(m_statement, parameter, value); }
    /// Taken where it lies.
    void bind(int parameter, std::string_view value) const
    {
        sqlite3_bind_text(m_statement, parameter, value.data(), static_cast<int>(value.size()), SQLITE_STATIC);
    }
    int columns() const { return sqlite3_column_count(m_statement); }
    std::string name(int column) const { return sqlite3_column_name(m_statement, column); }
    bool isText(int column) const
    {
        return std::string_view(sqlite3_column_decltype(m_statement, column)).starts_with("TEXT");
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

/// The columns of a table that its writers name, and of which kind they are.
struct Columns {
    Columns(const Database& database, const std::string& table)
    {
        constexpr std::array unnamed{"subFileAndDirectory", "operateType", "device"};
        const Query all(database, "SELECT * FROM " + table);
        for (int column = 0; column < all.columns(); ++column) {
            if (std::find(unnamed.begin(), unnamed.end(), all.name(column)) == unnamed.end()) {
                names.push_back('[' + all.name(column) + ']');
                areTexts.push_back(all.isText(column));
            }
        }
    }

    std::string list() const
    {
        std::string text;
        for (const std::string& name : names) {
            text += (text.empty() ? "" : ",") + name;
        }
        return text;
    }

    std::vector<std::string> names;
    std::vector<bool> areTexts;
};

/// Inserts rows of a table. Columns that are the same in all rows are bound once: empty or 0 unless said otherwise.
class Insert : public Query {
public:
    Insert(const Database& database, const std::string& table) : Insert(database, table, Columns(database, table)) { }

    int parameter(const std::string& name) const { return m_parameters.at('[' + name + ']'); }

private:
    Insert(const Database& database, const std::string& table, const Columns& columns)
        : Query(database, "INSERT INTO " + table + "(" + columns.list() + ") VALUES (?" + repeated(columns) + ")")
    {
        int parameter = 0;
        for (const std::string& name : columns.names) {
            columns.areTexts[static_cast<std::size_t>(parameter)] ? bind(parameter + 1, "") : bind(parameter + 1, 0);
            m_parameters[name] = ++parameter;
        }
    }

    static std::string repeated(const Columns& columns)
    {
        std::string marks;
        for (std::size_t i = 1; i < columns.names.size(); ++i) {
            marks += ",?";
        }
        return marks;
    }

    std::map<std::string, int> m_parameters;
};

std::string textOf(const XXH128_hash_t& hash)
{
    XXH128_canonical_t bytes;
    XXH128_canonicalFromHash(&bytes, hash);
    std::string text(32, '0');
    for (std::size_t i = 0; i < text.size(); ++i) {
        text[i] = "0123456789abcdef"[i % 2 == 0 ? bytes.digest[i / 2] >> 4 : bytes.digest[i / 2] & 15];
    }
    return text;
}

std::string idOf(std::string_view path)
{
    return textOf(XXH3_128bits(path.data(), path.size()));
}

std::string_view shown(std::string_view text, std::string& repaired)
{
    return platform::isUtf8(text) ? text : repaired = platform::repairUtf8(text);
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

constexpr std::int64_t perSecond = 1'000'000'000;

class TreeWriter {
public:
    TreeWriter(const Database& database, std::string folder)
        : m_insert(database, "DriveDataTable"),
          m_folder(std::move(folder))
    {
        m_insert.bind(m_insert.parameter("kind"), "drive#file");
        m_insert.bind(m_insert.parameter("needToDisplay"), 1);
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
        const bool isFolder = entry.kind == WalkedEntry::Kind::Folder;
        const ExtensionGroup group =
            entry.kind == WalkedEntry::Kind::File ? constants::groupOf(entry.name) : ExtensionGroup::Unknown;
        std::string repairedName;
        std::string repairedPath;
        m_insert.bind(m_id, id);
        m_insert.bind(m_name, shown(entry.name, repairedName));
        m_insert.bind(m_mimeType, mimeTypeOf(entry));
        m_insert.bind(m_size, entry.size);
        m_insert.bind(m_version, version);
        m_insert.bind(m_parentIdColumn, parentId);
        m_insert.bind(m_created, entry.modifiedNanoseconds / perSecond);
        m_insert.bind(m_modified, entry.modifiedNanoseconds / perSecond);
        m_insert.bind(m_pathColumn, shown(path, repairedPath));
        m_insert.bind(m_sign, static_cast<int>(group));
        m_insert.bind(m_class, isFolder ? 0 : classOf(group));
        m_insert.write();
    }

    Insert m_insert;
    const int m_id = m_insert.parameter("fileId");
    const int m_name = m_insert.parameter("name");
    const int m_mimeType = m_insert.parameter("mimeType");
    const int m_size = m_insert.parameter("size");
    const int m_version = m_insert.parameter("contentVersion");
    const int m_parentIdColumn = m_insert.parameter("parentId");
    const int m_created = m_insert.parameter("createdTime");
    const int m_modified = m_insert.parameter("modifiedTime");
    const int m_pathColumn = m_insert.parameter("localAbsolutePath");
    const int m_sign = m_insert.parameter("fileExtSign");
    const int m_class = m_insert.parameter("classIndex");
    std::string m_folder;
    std::string m_parent;
    std::string m_parentId;
    std::string m_path;
};

class GalleryWriter {
public:
    GalleryWriter(const Database& database, std::string folder)
        : m_file(database, "GalleryFile"),
          m_album(database, "Album"),
          m_folder(std::move(folder))
    {
    }

    void write(const WalkedEntry& entry)
    {
        const int number = classOf(constants::groupOf(entry.name));
        if (entry.kind != WalkedEntry::Kind::File || (number != 2 && number != 4)) {
            return;
        }
        if (entry.parent != m_parent || m_albumId.empty()) {
            writeAlbum(entry);
        }
        const std::string path = m_folder + '/' + std::string(entry.path);
        const std::string id = idOf(path);
        const std::string hash = hashOf(path);
        const std::string version = std::to_string(entry.modifiedNanoseconds);
        std::string repairedName;
        std::string repairedPath;
        m_file.bind(m_file.parameter("UniqueId"), id);
        m_file.bind(m_file.parameter("Hash"), hash);
        m_file.bind(m_file.parameter("CreateTime"), entry.modifiedNanoseconds / perSecond);
        m_file.bind(m_file.parameter("FirstUpdateTime"), entry.modifiedNanoseconds / perSecond);
        m_file.bind(m_file.parameter("Size"), entry.size);
        m_file.bind(m_file.parameter("LocalPath"), shown(path, repairedPath));
        m_file.bind(m_file.parameter("FileName"), shown(entry.name, repairedName));
        m_file.bind(m_file.parameter("AlbumId"), m_albumId);
        m_file.bind(m_file.parameter("Sdsmtime"), version);
        m_file.write();
    }

private:
    void writeAlbum(const WalkedEntry& entry)
    {
        m_parent = entry.parent;
        const std::string path = m_parent.empty() ? m_folder : m_folder + '/' + m_parent;
        const std::string name = path.substr(path.rfind('/') + 1);
        const std::string below = '/' + m_parent;
        m_albumId = idOf(path);
        std::string repaired;
        std::string repairedName;
        m_album.bind(m_album.parameter("AlbumId"), m_albumId);
        m_album.bind(m_album.parameter("AlbumName"), shown(name, repairedName));
        m_album.bind(m_album.parameter("CreateTime"), entry.parentModifiedNanoseconds / perSecond);
        m_album.bind(m_album.parameter("Lpath"), shown(below, repaired));
        m_album.write();
    }

    std::string hashOf(const std::string& path)
    {
        std::ifstream file(path, std::ios::binary);
        XXH3_128bits_reset(&m_state);
        while (file.read(m_block.data(), static_cast<std::streamsize>(m_block.size())) || file.gcount() > 0) {
            XXH3_128bits_update(&m_state, m_block.data(), static_cast<std::size_t>(file.gcount()));
        }
        return textOf(XXH3_128bits_digest(&m_state));
    }

    Insert m_file;
    Insert m_album;
    std::string m_folder;
    std::string m_parent;
    std::string m_albumId;
    XXH3_state_t m_state{};
    std::vector<char> m_block = std::vector<char>(1 << 18);
};

/// Writes a row of each entry in one transaction.
template <class Writer> void fillWith(const std::string& store, const std::string& folder)
{
    const Database database(store);
    database.run("BEGIN IMMEDIATE");
    {
        Writer rows(database, folder);
        walkFolder(folder, [&](const WalkedEntry& entry) { rows.write(entry); });
    }
    database.run("COMMIT");
}

} // namespace

void PlainProgram::fill(const std::string& folder) const
{
    fillWith<TreeWriter>(m_store, folder);
}

void PlainProgram::fillGallery(const std::string& folder) const
{
    fillWith<GalleryWriter>(m_store, folder);
}

void PlainProgram::walkAndRead(const std::string& folder) const
{
    std::int64_t seen = 0;
    walkFolder(folder, [&](const WalkedEntry& entry) { seen += entry.size + entry.modifiedNanoseconds; });

    const Database database(m_store);
    const Columns columns(database, "DriveDataTable");
    const Query rows(database, "SELECT " + columns.list() + " FROM DriveDataTable");
    std::vector<std::string> texts(columns.names.size());
    while (rows.step()) {
        for (std::size_t i = 0; i < texts.size(); ++i) {
            if (columns.areTexts[i]) {
                texts[i] = rows.text(static_cast<int>(i));
            } else {
                seen += rows.number(static_cast<int>(i));
            }
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
    const Query query(
        database,
        "WITH RECURSIVE items(fileId, recycled, size) AS (SELECT fileId, recycled, size FROM "
        "DriveDataTable WHERE parentId = '' UNION ALL SELECT DriveDataTable.fileId, "
        "DriveDataTable.recycled, DriveDataTable.size FROM DriveDataTable JOIN items ON "
        "DriveDataTable.parentId = items.fileId) SELECT COUNT(*), SUM(size) FROM items WHERE recycled = 0");
    query.step();
}

void requireSameRows(const std::string& tools, const std::string& other, const std::string& table)
{
    const Database database(tools);
    database.run("ATTACH '" + other + "' AS other");
    const auto countOf = [&](const std::string& rows) {
        const Query query(database, "SELECT COUNT(*) FROM " + rows);
        query.step();
        return query.number(0);
    };
    const std::string indexes = ".sqlite_master WHERE type = 'index'";
    if (countOf("main." + table) != countOf("other." + table) ||
        countOf("(SELECT * FROM main." + table + " EXCEPT SELECT * FROM other." + table + ")") != 0 ||
        countOf("(SELECT name FROM other" + indexes + " EXCEPT SELECT name FROM main" + indexes + ")") != 0) {
        throw std::runtime_error("the tool and the plain program have filled " + table + " differently");
    }
}

} // namespace benchmarks
