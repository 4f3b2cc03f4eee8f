#pragma once

#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace DatabaseService {

class DatabaseOperationBase;
class ElementSource;
class RowSink;

/// What a call asks of the engine. Values come from `elements` and rows go to `rows`, either of which may be null.
struct UnitOfWork {
    sqlite3* db = nullptr;        ///< null: a connection of the call's own
    sqlite3_stmt* stmt = nullptr; ///< null: a statement of the call's own, made from `sql`
    std::string_view sql = "";    // NOLINT(readability-redundant-string-init): SQLite refuses null
    ElementSource* elements = nullptr;
    RowSink* rows = nullptr; ///< makes it a query
};

/// The library's own way into the engine of a store, behind every overload that `DatabaseOperationBase` has for
/// others. What the log shows and the file holds is the same whoever feeds it. The class grants and defines it, and
/// nothing in this folder knows more of the class.
bool run(DatabaseOperationBase& store, const UnitOfWork& work);

} // namespace DatabaseService
