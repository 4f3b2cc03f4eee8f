#pragma once

#include "databaseservice/databaseoperationbase.h"
#include "databaseservice/export.h"
#include "databaseservice/fastaccesstable.h"
#include "databaseservice/integers.h"

#include <functional>
#include <string>
#include <vector>

/// The shortcut list, in `FastAccess.dat`, on the calling thread. Each function first creates what is missing of the
/// table.
///
/// Threads: any. A callback runs on the calling thread, after the connection is closed. Two threads that bring the
/// same old file up to date at once may both try to add the column; one then logs that it failed.
/// Ownership: what `GetAllFastAccessData` hands to its callback belongs to the callback; see there.
/// Failure: all return true; a failed statement is a line in the log, a failed read gives no rows.
namespace DatabaseService::FastAccessDBProvider {

/// The client's shortcut list, in `FastAccess.dat`: the table and the statements on it. Clients use the functions
/// below, which bring the table up to date first.
///
/// Threads: any; each call opens its own connection.
/// Ownership: records stay the caller's. A null record is left out with a line in the log.
/// Failure: lines in the log. Where there is a result, it tells whether the transaction was committed.
class DATABASESERVICE_EXPORT FastAccessTableProvider : public DatabaseOperationBase {
public:
    FastAccessTableProvider();
    FastAccessTableProvider(const FastAccessTableProvider&) = default;
    FastAccessTableProvider(FastAccessTableProvider&&) = default;
    FastAccessTableProvider& operator=(const FastAccessTableProvider&) = default;
    FastAccessTableProvider& operator=(FastAccessTableProvider&&) = default;
    ~FastAccessTableProvider() = default;

    /// Does nothing, and returns true: the table is made by `EnsureFastAccessTable`.
    bool InitDatabase() override;

    /// Creates the table if it is missing, and adds the column `Rotate` if that is.
    void EnsureFastAccessTable();
    /// Adds the column `Rotate`, whatever the name, unless the table's stored SQL holds `name` anywhere, in either
    /// case. `name` goes into the statement's text as it is.
    void AddColumnIfMissing(const std::string& name);

    /// Appends all rows, the highest `Index` first.
    bool GetAllFastAccessRows(std::vector<FastAccessTable>& rows);
    /// Ignores the record's `Id` and sets it to the highest of the table, read by a second transaction: the new row's
    /// as long as nobody else inserts in between, 0 if it cannot be read.
    bool InsertFastAccessRow(FastAccessTable* record);
    /// Leaves the file of its icon alone, unlike `DeleteFastAccessData`.
    bool DeleteFastAccessRow(int id);
    /// Writes all columns of the row with the record's `Id`.
    bool UpdateFastAccessRow(const FastAccessTable* record);
    /// Empty for an unknown id.
    std::wstring GetFastAccessIconPath(int id);
    /// Leaves the file without its table.
    bool DropTable();
};

/// Creates what is missing of the table, and does nothing else.
DATABASESERVICE_EXPORT bool InitFastAccessDB();

/// Calls `callback(0, address)` once, where `address` is a `std::vector<FastAccessTable*>*` as an integer, with the
/// highest `Index` first; empty without rows. From the begin of the call the vector and every record in it belong to
/// the callback, which frees them all with `delete`. With an empty `callback` nothing is read, and the log says so.
DATABASESERVICE_EXPORT bool GetAllFastAccessData(std::function<void(uint64, int64)> callback);

/// Stores the record, sets its `Id` as `InsertFastAccessRow` does and calls `callback(0, address)` with the record's
/// address as an integer; the record stays the caller's. A null record is not stored: the log says so, and the callback
/// gets the address 0. An empty `callback` is not called.
DATABASESERVICE_EXPORT bool InsertFastAccessData(FastAccessTable* record, std::function<void(uint64, int64)> callback);

/// Deletes the row, and before it the file behind its icon if that is a cached one: if `IconPath` holds "FastAccess",
/// in this case, it names a file below the user's cache path, to which it is joined without a separator. A file that
/// cannot be deleted is a line in the log, and the row goes all the same.
DATABASESERVICE_EXPORT bool DeleteFastAccessData(int id);

/// A null record changes nothing, and the log says so.
DATABASESERVICE_EXPORT bool UpdateFastAccessData(const FastAccessTable* record);

/// Leaves the file without the table until the next call of any of the others.
DATABASESERVICE_EXPORT void DropFastAccessTable();

} // namespace DatabaseService::FastAccessDBProvider
