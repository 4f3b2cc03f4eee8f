#pragma once

#include "drive.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace benchmarks {

/// A made-up drive of a given size, the same in every run: folders within folders with the names, mime types,
/// hashes, links and times that a real drive holds. One folder is large and holds photographs, a
/// fifth of the records, at most 20,000.
struct DriveTree {
    DriveRecords records;       ///< a folder's children stand together, the large folder's first
    std::string largeFolder;    ///< its id
    std::size_t firstChild = 0; ///< of the large folder, as an index into `records`
    std::size_t children = 0;
};

/// How many of the records are in the large folder.
std::size_t largeFolderSize(std::size_t rows);

DriveTree makeDriveTree(std::size_t rows);

/// Sets all markers of pending operations. Another `stamp` gives other values of the same size in the store.
void setMarkers(DriveRecords& records, std::int64_t stamp);

/// Over every stored member of every record, in order.
std::uint64_t checksum(const DriveRecords& records);

} // namespace benchmarks
