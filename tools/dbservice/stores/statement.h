#pragma once

#include "stores/database.h"

#include <memory>
#include <string_view>

namespace dbservice {

/// A statement whose rows are taken one by one, where more than one goes on at a time.
///
/// Failure: as of its `Database`, which has to outlive it.
class Statement {
public:
    Statement(Database& database, std::string_view text);

    /// False behind the last row.
    bool step();
    Database::Row row() const { return Database::Row(m_statement.get()); }

    struct Finalize {
        void operator()(sqlite3_stmt* statement) const;
    };
    using Handle = std::unique_ptr<sqlite3_stmt, Finalize>;

private:
    Database& m_database;
    Handle m_statement;
};

} // namespace dbservice
