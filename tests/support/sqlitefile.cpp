#include "support/sqlitefile.h"

#include "databaseservice/driverdbproviderbase.h"
#include "platform/paths.h"

#include <memory>
#include <stdexcept>
#include <string_view>

namespace testsupport {

namespace {

std::string cellText(sqlite3_stmt* stmt, int column)
{
    const int type = sqlite3_column_type(stmt, column);
    const auto bytes = [&] {
        const auto* data = static_cast<const char*>(sqlite3_column_blob(stmt, column));
        return std::string(data == nullptr ? "" : data, static_cast<std::size_t>(sqlite3_column_bytes(stmt, column)));
    };
    switch (type) {
    case SQLITE_NULL:
        return "NULL";
    case SQLITE_TEXT:
        return textCell(bytes());
    case SQLITE_BLOB: {
        std::string text = "x'";
        for (const char byte : bytes()) {
            constexpr std::string_view digits = "0123456789ABCDEF";
            text += digits[static_cast<unsigned char>(byte) / 16];
            text += digits[static_cast<unsigned char>(byte) % 16];
        }
        return text + '\'';
    }
    default:
        return reinterpret_cast<const char*>(sqlite3_column_text(stmt, column));
    }
}

} // namespace

std::string textCell(const std::string& text)
{
    return '\'' + text + '\'';
}

SqliteFile::SqliteFile(const std::filesystem::path& file, Collation collation)
{
    std::string error;
    if (sqlite3_open(platform::toUtf8(file).c_str(), &m_db) != SQLITE_OK) {
        error = sqlite3_errmsg(m_db);
    } else if (collation == Collation::NameCompare) {
        DatabaseService::DriverDBProviderBase::BindNameCompare(m_db, error);
    }
    if (!error.empty()) {
        sqlite3_close(m_db);
        throw std::runtime_error(error);
    }
    sqlite3_busy_timeout(m_db, 60'000);
    sqlite3_exec(m_db, "PRAGMA synchronous=OFF", nullptr, nullptr, nullptr); // for speed alone
}

SqliteFile::~SqliteFile()
{
    sqlite3_close(m_db);
}

void SqliteFile::exec(const std::string& sql)
{
    if (sqlite3_exec(m_db, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(m_db));
    }
}

Rows SqliteFile::query(const std::string& sql)
{
    sqlite3_stmt* prepared = nullptr;
    sqlite3_prepare_v2(m_db, sql.c_str(), -1, &prepared, nullptr);
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> stmt(prepared, &sqlite3_finalize);
    Rows rows;
    int code = SQLITE_ERROR;
    while (prepared != nullptr && (code = sqlite3_step(prepared)) == SQLITE_ROW) {
        auto& row = rows.emplace_back();
        for (int column = 0; column < sqlite3_column_count(prepared); ++column) {
            row.push_back(cellText(prepared, column));
        }
    }
    if (code != SQLITE_DONE) {
        throw std::runtime_error(sqlite3_errmsg(m_db));
    }
    return rows;
}

std::string SqliteFile::value(const std::string& sql)
{
    return query(sql).at(0).at(0);
}

} // namespace testsupport
