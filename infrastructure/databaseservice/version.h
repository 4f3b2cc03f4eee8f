#pragma once

#include "databaseservice/export.h"

#include <string>

namespace DatabaseService {

/// This library's version, as "1.2.3".
DATABASESERVICE_EXPORT std::string LibraryVersion();

/// The version of the SQLite that this library runs on.
DATABASESERVICE_EXPORT std::string SqliteVersion();

/// The order of names that this build keeps in the drive store's index. A store may be written only by builds
/// that name the same order.
DATABASESERVICE_EXPORT std::string NameOrderVersion();

} // namespace DatabaseService
