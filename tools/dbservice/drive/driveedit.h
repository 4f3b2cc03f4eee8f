#pragma once

#include "databaseservice/driverdbprovider.h"
#include "drive/drivetree.h"

#include <string>
#include <vector>

namespace dbservice {

class Session;

/// One run of a command that changes the drive tree as a client does: it writes markers of pending operations, all of
/// one batch and one time. First it looks at everything, then it writes, then it reads back what it has written, since
/// the library's writers do not tell.
///
/// Failure: a `Failure` "cannot `verb` PATH: ..."; nothing is written if it comes from a check.
class DriveEdit {
public:
    using Row = DatabaseService::DriveDataTable;
    using Writer = bool (DatabaseService::DriverDBProvider::*)(const std::vector<Row>&);

    /// The store must be there. `verb` is for the texts of failures.
    DriveEdit(Session& session, std::string verb);

    DriveTree& tree() { return m_tree; }
    /// What a marker of this run holds: microseconds since 1970-01-01 UTC on this machine's clock, and seconds since
    /// then on the server's.
    DatabaseService::int64 batchId() const { return m_batchId; }
    DatabaseService::int64 time() const { return m_time; }

    [[noreturn]] void refuse(const std::string& path, const std::string& reason) const;

    /// The row at a path, unless it is the root, deleted, or below a folder that is.
    Row rowToChange(const std::string& path);
    /// A folder that may take rows in: not deleted, nor below one that is.
    DriveTree::Place folderToFill(const std::string& folder, const std::string& path);
    void requireNothingAboveDeleted(const Row& row, const std::string& path);
    void requireFreeName(const std::string& folderId, const std::string& name, const std::string& path);

    /// Writes the rows; the records are what the rows are to be, in all columns.
    void write(Writer writer, const std::vector<Row>& rows);
    /// Prints what was written; `note` tells people what they will see of it.
    void show(const std::string& note);

private:
    Session& m_session;
    DatabaseService::DriverDBProvider& m_drive;
    DriveTree m_tree;
    std::string m_verb;
    DatabaseService::int64 m_batchId;
    DatabaseService::int64 m_time;
    std::vector<Row> m_written;
};

} // namespace dbservice
