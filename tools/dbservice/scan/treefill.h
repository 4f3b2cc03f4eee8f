#pragma once

#include "databaseservice/driverdbprovider.h"
#include "scan/scanrecord.h"
#include "scan/sourcefolder.h"
#include "scan/treewalk.h"

#include <cstdint>
#include <string>
#include <vector>

namespace dbservice {

class Session;

/// The first scan: fills an empty drive store with the tree of a real folder.
///
/// Rows go in without indexes, and each index is made of all rows at the end. The walk looks far ahead, and the rows of
/// what it has found are written in the order of their keys, in transactions of a few thousand: each touches few pages
/// of the key's own index. What is written stays if the run is cut off, and `TreeSync` completes it.
///
/// Failure: a `Failure` as soon as the library has logged one.
class TreeFill {
public:
    TreeFill(Session& session, DatabaseService::DriverDBProvider& drive, SourceFolder& source, ScanRecord& record);

    void run();

private:
    struct Found {
        DiskEntry entry; // without its name, which only the walk needs
        std::uint32_t folder = 0;
    };
    struct Folder {
        std::string id;
        std::string shownPath;
    };

    void dropIndexes();
    void createIndexes();
    void fill();
    void lookAhead();
    void write();
    void insert();

    Session& m_session;
    DatabaseService::DriverDBProvider& m_drive;
    SourceFolder& m_source;
    ScanRecord& m_record;
    TreeWalk m_walk;
    std::vector<Folder> m_folders;
    std::vector<Found> m_found;
    std::vector<DatabaseService::DriveDataTable> m_rows; // of one transaction
};

} // namespace dbservice
