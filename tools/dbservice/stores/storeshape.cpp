#include "stores/storeshape.h"

#include "clientservices/globalparamwrapper.h"
#include "databaseservice/keptconnections.h"
#include "platform/neverdestroyed.h"
#include "platform/paths.h"
#include "platform/scopeexit.h"
#include "stores/database.h"
#include "terminal/failure.h"

#include <algorithm>
#include <map>
#include <optional>
#include <sqlite3.h>
#include <utility>

namespace dbservice {

namespace {

bool isSame(std::string_view left, std::string_view right)
{
    return left.size() == right.size() &&
        sqlite3_strnicmp(left.data(), right.data(), static_cast<int>(left.size())) == 0;
}

template <class Named> const Named* find(const std::vector<Named>& all, std::string_view name)
{
    const auto found = std::find_if(all.begin(), all.end(), [&](const Named& one) { return isSame(one.name, name); });
    return found == all.end() ? nullptr : &*found;
}

/// The library gets SQLite's own disk in memory for it, where a file lasts as long as a connection to it and where a
/// name that begins with a separator is the same file for all connections.
StoreShape layDown(const StoreKind& kind)
{
    GlobalParamWrapper& settings = *GlobalParamWrapper::GetInstance();
    sqlite3_vfs* const disk = sqlite3_vfs_find(nullptr);
    sqlite3_vfs* const memory = sqlite3_vfs_find("memdb");
    if (memory == nullptr) {
        throw Failure("cannot tell what the library lays down: this SQLite has no disk in memory");
    }
    const platform::ScopeExit back([&, folder = settings.GetUserDataBaseFolder()] {
        settings.SetUserDataBaseFolder(folder);
        sqlite3_vfs_register(disk, 1);
    });
    settings.SetUserDataBaseFolder(newStoreFolder);
    sqlite3_vfs_register(memory, 1);
    Database kept(platform::toPath(platform::fromBackslashes(kind.newFile)), Database::Access::Write);
    kind.layDown();
    DatabaseService::CloseKeptConnections(); // of the legacy file's reader
    return shapeOf(kept);
}

std::size_t columnCount(const StoreShape& shape)
{
    std::size_t count = 0;
    for (const TableShape& table : shape.tables) {
        count += table.columns.size();
    }
    return count;
}

std::size_t sharedColumns(const TableShape& table, const TableShape& other)
{
    return static_cast<std::size_t>(
        std::count_if(table.columns.begin(), table.columns.end(),
                      [&](const ColumnShape& column) { return other.column(column.name) != nullptr; }));
}

std::string listed(const std::vector<std::string>& names)
{
    constexpr std::size_t shown = 5;
    std::string text;
    for (std::size_t i = 0; i < std::min(shown, names.size()); ++i) {
        text += (i == 0 ? "" : ", ") + names[i];
    }
    return text + (names.size() > shown ? " and " + std::to_string(names.size() - shown) + " more" : "");
}

std::string declared(const ColumnShape& column)
{
    return (column.type.empty() ? "no type" : column.type) + (column.notNull ? " NOT NULL" : "") +
        (column.key != 0 ? ", in the primary key" : "");
}

/// What a statement that makes an index means, whatever its name is written like.
std::string_view definition(const IndexShape& index)
{
    return std::string_view(index.sql).substr(std::min(index.sql.find('('), index.sql.size()));
}

void addTableDifferences(const TableShape& there, const TableShape& library, std::vector<ShapeDifference>& found)
{
    using Of = ShapeDifference::Of;
    for (const ColumnShape& column : library.columns) {
        const ColumnShape* const same = there.column(column.name);
        const std::string name = library.name + "." + column.name;
        if (same == nullptr) {
            found.push_back(
                {Of::MissingColumn, library.name, column.name, library.name + " lacks the column " + column.name});
        } else if (!isSame(same->type, column.type) || same->notNull != column.notNull || same->key != column.key) {
            found.push_back({Of::OtherColumn, library.name, column.name,
                             name + " is declared " + declared(*same) + ", not " + declared(column)});
        }
    }
    for (const ColumnShape& column : there.columns) {
        if (library.column(column.name) == nullptr) {
            found.push_back(
                {Of::AddedColumn, library.name, column.name, library.name + " has a column more, " + column.name});
        }
    }
}

} // namespace

const ColumnShape* TableShape::column(std::string_view wanted) const
{
    return find(columns, wanted);
}

const TableShape* StoreShape::table(std::string_view name) const
{
    return find(tables, name);
}

const IndexShape* StoreShape::index(std::string_view name) const
{
    return find(indexes, name);
}

StoreShape shapeOf(Database& database)
{
    StoreShape shape;
    database.run("SELECT type, name, tbl_name, sql FROM sqlite_master WHERE name NOT LIKE 'sqlite!_%' ESCAPE '!' "
                 "AND type IN ('table', 'index') ORDER BY rowid",
                 {}, [&](const Database::Row& row) {
                     const std::string name(row.text(1));
                     const std::string sql(row.text(3));
                     if (row.text(0) == "table") {
                         shape.tables.push_back({name, sql, {}});
                     } else {
                         shape.indexes.push_back({name, std::string(row.text(2)), sql});
                     }
                 });
    for (TableShape& table : shape.tables) {
        database.run("SELECT name, type, \"notnull\", dflt_value IS NOT NULL, pk FROM pragma_table_info(?)",
                     {table.name}, [&](const Database::Row& row) {
                         table.columns.push_back({std::string(row.text(0)), std::string(row.text(1)),
                                                  row.number(2) != 0, row.number(3) != 0,
                                                  static_cast<int>(row.number(4))});
                     });
    }
    return shape;
}

const StoreShape& shapeOfLibrary(const StoreKind& kind)
{
    static auto& known = platform::neverDestroyed(std::map<std::string, StoreShape>());
    const auto found = known.find(kind.word);
    return found != known.end() ? found->second : known.emplace(kind.word, layDown(kind)).first->second;
}

const StoreKind* kindOf(const StoreShape& shape)
{
    const StoreKind* best = nullptr;
    std::pair<std::size_t, std::size_t> bestShare; // columns in common, and of equals the kind with fewer others
    for (const StoreKind& kind : storeKinds()) {
        const StoreShape& library = shapeOfLibrary(kind);
        std::size_t shared = 0;
        for (const TableShape& table : library.tables) {
            const TableShape* const there = shape.table(table.name);
            const std::size_t columns = there == nullptr ? 0 : sharedColumns(table, *there);
            shared += 2 * columns >= table.columns.size() ? columns : 0;
        }
        const std::pair share(shared, SIZE_MAX - columnCount(library));
        if (shared > 0 && share > bestShare) {
            best = &kind;
            bestShare = share;
        }
    }
    return best;
}

std::vector<ShapeDifference> differences(const StoreShape& shape, const StoreKind& kind)
{
    using Of = ShapeDifference::Of;
    const StoreShape& library = shapeOfLibrary(kind);
    std::vector<ShapeDifference> found;
    for (const TableShape& table : library.tables) {
        if (const TableShape* const there = shape.table(table.name)) {
            addTableDifferences(*there, table, found);
        } else {
            found.push_back({Of::MissingTable, table.name, {}, "there is no table " + table.name});
        }
    }
    for (const IndexShape& index : library.indexes) {
        const IndexShape* const there = shape.index(index.name);
        if (shape.table(index.table) == nullptr) {
            continue; // the table comes with its indexes
        }
        if (there == nullptr) {
            found.push_back(
                {Of::MissingIndex, index.table, index.name, "there is no index " + index.name + " on " + index.table});
        } else if (!isSame(there->table, index.table) || !isSame(definition(*there), definition(index))) {
            found.push_back({Of::OtherIndex, index.table, index.name,
                             "the index " + index.name + " is another one, made by " + there->sql});
        }
    }
    for (const TableShape& table : shape.tables) {
        if (library.table(table.name) == nullptr) {
            found.push_back(
                {Of::AddedTable, table.name, {}, "the table " + table.name + " is none of the library's here"});
        }
    }
    return found;
}

std::string missingColumns(const std::filesystem::path& file)
{
    Database database(file);
    const StoreShape shape = shapeOf(database);
    const StoreKind* const kind = kindOf(shape);
    if (kind == nullptr) {
        return {};
    }
    std::map<std::string, std::vector<std::string>> missing;
    for (const ShapeDifference& difference : differences(shape, *kind)) {
        if (difference.of == ShapeDifference::Of::MissingColumn) {
            missing[difference.table].push_back(difference.name);
        }
    }
    std::string text;
    for (const auto& [table, columns] : missing) {
        text += (text.empty() ? "" : "; ") + table +
            (columns.size() == 1 ? " lacks the column " : " lacks the columns ") + listed(columns);
    }
    return text;
}

} // namespace dbservice
