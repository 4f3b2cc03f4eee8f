#include "stores/statement.h"

#include <sqlite3.h>

namespace dbservice {

Statement::Statement(Database& database, std::string_view text) : m_database(database)
{
    sqlite3_stmt* prepared = nullptr;
    const int code =
        sqlite3_prepare_v2(database.handle(), text.data(), static_cast<int>(text.size()), &prepared, nullptr);
    m_statement.reset(prepared);
    if (code != SQLITE_OK) {
        database.fail("read");
    }
}

bool Statement::step()
{
    const int code = sqlite3_step(m_statement.get());
    if (code != SQLITE_ROW && code != SQLITE_DONE) {
        m_database.fail("read");
    }
    return code == SQLITE_ROW;
}

void Statement::Finalize::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

} // namespace dbservice
