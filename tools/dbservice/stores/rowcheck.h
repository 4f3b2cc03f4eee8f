#pragma once

#include "stores/finding.h"
#include "stores/storeshape.h"

namespace dbservice {

class Database;

/// The cells of a table: values of a kind that the library reads otherwise than its column says. `library` is how it
/// lays the table down. Throws a `Failure` where the table cannot be read.
void checkCells(Database& database, const TableShape& table, const TableShape& library, Findings& findings);

/// The rows of a drive store: folders that do not exist, second roots, circles, markers that nobody acts on. Of a store
/// whose tables lack a column that is asked for, a `Failure`.
void checkDriveRows(Database& database, const StoreShape& shape, Findings& findings);

/// The rows of a gallery: files of albums that do not exist; likewise.
void checkGalleryRows(Database& database, Findings& findings);

} // namespace dbservice
