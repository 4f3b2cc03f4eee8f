#pragma once

#include "databaseservice/export.h"

#include <cstddef>
#include <string>
#include <vector>

/// Connections that could not be closed when their work was done. Each holds its file open, and what it locks there,
/// until the process ends or `CloseKeptConnections` closes it.
///
/// A client that sees a failed commit in its log calls `CloseKeptConnections()` now and then, such as when it finds
/// that there is room on the disk again: while a disk is full every failed write leaves a connection, and without
/// file handles no store can be opened. What is still listed after that keeps a transaction open, and other writers
/// of its file wait for it without end; `CloseKeptConnections(OpenTransactions::RollBack)` gives its rows up.
///
/// Threads: any.
namespace DatabaseService {

/// One connection that is still open.
struct KeptConnection {
    std::wstring database; ///< the store's file name; the legacy file's whole path
    std::string reason;    ///< why it could not be closed, for a log
};

/// All of them, oldest first.
DATABASESERVICE_EXPORT std::vector<KeptConnection> ListKeptConnections();

/// What becomes of transactions that are still open.
enum class OpenTransactions {
    Keep,     ///< their connections stay
    RollBack, ///< what they have written is lost
};

/// Closes those whose transaction is over, as SQLite has rolled it back or it never began, and on demand those whose
/// transaction is open. Gives how many it closed. One whose statements somebody still uses stays.
DATABASESERVICE_EXPORT std::size_t CloseKeptConnections(OpenTransactions open = OpenTransactions::Keep);

} // namespace DatabaseService
