#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace dbservice {

class Database;

/// How many files there are of a kind, and their size.
struct Share {
    std::string label;
    std::int64_t files = 0;
    std::int64_t bytes = 0;
};

/// The drive's rows outside the bin as a tree of folders with the sizes of what is below them, cut down to what a
/// picture can show: the largest entries of the largest folders, and one entry in each for the rest.
struct DriveMap {
    struct Entry {
        std::string name;
        std::int64_t bytes = 0; ///< of a folder: of all files below it
        std::int64_t files = 0; ///< of a folder: below it; 0 for a file
        int parent = -1;        ///< the place in the list, which lies before its children
        bool isFolder = false;
        bool isRest = false; ///< stands for what its folder holds beside the entries that are shown
    };

    std::vector<Entry> entries; ///< the first is the top; empty where nothing is stored

    std::int64_t files = 0;
    std::int64_t folders = 0;
    std::int64_t bytes = 0;
    std::int64_t inCircles = 0; ///< rows that no walk down from the top reaches
    std::vector<Share> classes;
    std::vector<Share> extensions; ///< the largest by size, and one for all others
    std::vector<Share> ages;       ///< by the time of the last change
};

/// `now` is in seconds since 1970-01-01 UTC, as the stored times are.
DriveMap readDriveMap(Database& drive, std::int64_t now);

} // namespace dbservice
