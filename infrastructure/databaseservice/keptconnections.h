#pragma once

#include "databaseservice/export.h"

#include <string>
#include <vector>

namespace DatabaseService {

/// A connection that had to stay open for the life of the process, and with it what it locks in its file.
struct KeptConnection {
    std::wstring database; ///< the store's file name; the legacy file's whole path
    std::string reason;
};

/// All of them, oldest first. Any thread.
DATABASESERVICE_EXPORT std::vector<KeptConnection> ListKeptConnections();

} // namespace DatabaseService
