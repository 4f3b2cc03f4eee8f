#pragma once

#include "command.h"
#include "databaseservice/clouddriverdb.h"

#include <cstdint>
#include <string>
#include <vector>

namespace dbservice {

class Session;

/// Which part of a list is shown, and in which order.
struct PageOptions {
    DatabaseService::CLOUD_DB_SORT_TYPE sort = DatabaseService::CLOUD_DB_SORT_NAME_ASC;
    unsigned offset = 0;
    unsigned count = 100;
};

/// The options --offset, --count and --sort.
Arguments pageOptions();
inline constexpr const char* sortOption = "--sort";

struct Page {
    std::vector<DatabaseService::DriveDataTable> rows;
    std::int64_t total = 0; ///< of the whole list
    std::string summary;    ///< what the whole list consists of
};

/// A page of a folder's rows that lists show, or of the recycle bin for an empty id: folders first, then files. The two
/// numbers say how many of each the whole list has.
Page childPage(DatabaseService::CloudDriverDb& lists, const std::string& parentId, std::int64_t folders,
               std::int64_t files, const PageOptions& options);

enum class TimeColumn { Modified, Recycled };

/// What a list tells beside the rows.
enum class Beside {
    Nothing,
    Paths,
    Hidden, ///< why lists hide a row
    PathsAndHidden
};

/// Prints rows only.
void showRows(Session& session, const std::vector<DatabaseService::DriveDataTable>& rows, TimeColumn time,
              Beside beside = Beside::Nothing);

/// Prints a page and which part of the list it is, with a warning where the order of names may be wrong. Throws a
/// `Failure` when it lacks rows: the library cuts a list short at a step that fails, and says nothing.
void showPage(Session& session, const Page& page, const PageOptions& options, TimeColumn time,
              Beside beside = Beside::Nothing);

/// All rows of a folder, hidden ones too.
Page wholeFolderPage(Session& session, const std::string& parentId, std::int64_t listed, const PageOptions& options);

/// Warns of what keeps rows that are shown from being found by a path.
void warnOfStrays(Session& session, const std::vector<DatabaseService::DriveDataTable>& rows);

/// The id of a stored row as `CloudDriverDb` may be given it. Throws a `Failure` for one that would not stay within its
/// quotes in a statement, and for an empty one, which would stand for the recycle bin.
std::string idForLists(const std::string& id);

} // namespace dbservice
