#pragma once

#include "clientservices/modulebase.h"
#include "databaseservice/export.h"
#include "databaseservice/fastaccesstable.h"
#include "databaseservice/integers.h"

#include <functional>

/// The shortcut list, by a module that does not have its callers wait.
namespace DatabaseService::FastAccessDB {

/// The way to the client's shortcut list: each operation is a message to a thread of the module's own, named
/// "FastAccessDBModule", and its result comes through a callback.
///
/// Threads: any, for all calls. They return at once; the work is done later, one at a time, in posting order, so that a
/// read sees what was posted before it. Callbacks run on the module's thread, and one that blocks holds up the list for
/// all. The notifications do their work on the calling thread.
/// Ownership: the instance belongs to the process and is never destroyed. Records stay the caller's and are not copied:
/// they must live as the operations say. An object of a derived class has to be stopped before it goes.
/// Failure: false and a line in the log when it could not be posted, since the module is stopped; no callback then,
/// and the heap copy of the callback or the id stays allocated for good. A statement that fails is a line of the
/// engine's and gives what `FastAccessDBProvider` says. What a callback throws is a line in the log.
class DATABASESERVICE_EXPORT FastAccessDBModule : public TessixDeskClient::ModuleBase {
public:
    /// The first call starts the thread.
    static FastAccessDBModule& GetInstance();

    FastAccessDBModule(const FastAccessDBModule&) = delete;
    FastAccessDBModule& operator=(const FastAccessDBModule&) = delete;
    ~FastAccessDBModule() override;

    /// Does nothing.
    void OnInit() override;
    /// Brings the table up to date.
    void OnUserLogin() override;
    /// Does nothing.
    void OnIntervalCheck() override;
    /// As `DeleteFastAccessTable`, but at once, ahead of what is posted and not yet done.
    void OnResetdatabase() override;

    /// `callback(0, address)` gets all entries, the highest `Index` first: `address` is a
    /// `std::vector<FastAccessTable*>*` as an integer. The vector and every record in it belong to the callback, which
    /// frees them all with `delete`.
    bool GetAllFastAccessData(std::function<void(uint64, int64)> callback);

    /// Stores the record, sets its `Id` and calls `callback(0, address)` with the record's address as an integer. The
    /// record must live until then, untouched.
    bool InsertFastAccessData(FastAccessTable* record, std::function<void(uint64, int64)> callback);

    /// Deletes the entry and, if that is a cached one, the file of its icon.
    bool DeleteFastAccessData(const int& id);

    /// The record must live, unchanged, until the message has been handled. Nothing tells when that is, but what is
    /// posted after it is handled after it: the callback of a `GetAllFastAccessData`, or a `StopWork`, comes later.
    bool UpdateFastAccessData(const FastAccessTable& record);

    /// Drops the table; the next operation creates it again, empty.
    void DeleteFastAccessTable();

protected:
    FastAccessDBModule();

    // The handlers. A `payload` that is a copy of a callback or an id is theirs to free; with 0 they do nothing.

    ///@{
    /// Handles the message of this name.
    void NotifyGetAllFastAccessData(uint64, int64 payload);
    void NotifyInsertFastAccessData(uint64 record, int64 payload);
    void NotifyDeleteFastAccessData(uint64, int64 payload);
    /// `record` is the caller's; 0 is a line in the log.
    void NotifyUpdateFastAccessData(uint64, int64 record);
    void NotifyDeleteFastAccessTable(uint64, int64);
    ///@}

private:
    unsigned m_msgGetAllFastAccessData = 0;
    unsigned m_msgInsertFastAccessData = 0;
    unsigned m_msgDeleteFastAccessData = 0;
    unsigned m_msgUpdateFastAccessData = 0;
    unsigned m_msgDeleteFastAccessTable = 0;
};

} // namespace DatabaseService::FastAccessDB
