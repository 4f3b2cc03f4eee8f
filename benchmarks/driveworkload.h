#pragma once

#include "driverecords.h"
#include "expertdrive.h"
#include "harness.h"
#include "librarydrive.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace benchmarks {

/// The drive's table under the library, under an expert who opens a connection per call as the library does, and
/// under one who keeps his connection. Holds the stores' folder and the records for as long as its operations are
/// used.
class DriveWorkload {
public:
    DriveWorkload(std::size_t rows, const std::filesystem::path& folder);

    /// To be measured in this order: the last one changes what the others read.
    std::vector<Operation> operations();

private:
    using Read = std::function<DriveRecords(Drive&)>;

    std::vector<Contender> inserting(bool withIndexes);
    std::vector<Contender> reading(const Read& read, const DriveRecords& expected);
    std::vector<Contender> updating();
    template <class Make> std::vector<Contender> contenders(Make make);

    void openFresh(Drive& drive, bool withIndexes);
    void openFull(Drive& drive);
    Drive& otherThan(const Drive& drive);

    DriveTree m_tree;
    DriveRecords m_children; ///< of the large folder
    DriveRecords m_marked;   ///< the large folder's children with the markers of the latest update
    DriveRecords m_looked;   ///< up by id
    std::int64_t m_stamp = 0;
    DriveRecords m_result;
    std::filesystem::path m_fresh;
    std::filesystem::path m_full;
    bool m_filled = false;
    LibraryDrive m_library;
    ExpertDrive m_expert{ExpertConnection::Kind::PerCall};
    ExpertDrive m_keptExpert{ExpertConnection::Kind::Kept};
};

} // namespace benchmarks
