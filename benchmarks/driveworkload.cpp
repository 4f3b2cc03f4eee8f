#include "driveworkload.h"

#include <algorithm>
#include <fmt/format.h>
#include <random>
#include <stdexcept>
#include <utility>

namespace benchmarks {

namespace {

constexpr std::size_t insertMemoryTarget = 16'000'000;

std::size_t requireEqual(const DriveRecords& records, const DriveRecords& expected)
{
    if (records.size() != expected.size() || checksum(records) != checksum(expected)) {
        throw std::runtime_error(fmt::format("{} rows with checksum {:x} in place of {} with {:x}", records.size(),
                                             checksum(records), expected.size(), checksum(expected)));
    }
    return records.size();
}

DriveRecords childrenOf(const DriveTree& tree)
{
    const auto first = tree.records.begin() + static_cast<std::ptrdiff_t>(tree.firstChild);
    return {first, first + static_cast<std::ptrdiff_t>(tree.children)};
}

} // namespace

DriveWorkload::DriveWorkload(std::size_t rows, const std::filesystem::path& folder)
    : m_tree(makeDriveTree(rows)),
      m_children(childrenOf(m_tree)),
      m_marked(m_children),
      m_fresh(folder / "fresh"),
      m_full(folder / "full")
{
    std::mt19937_64 random{1};
    for (std::size_t i = std::min<std::size_t>(2000, rows / 25); i > 0; --i) {
        m_looked.push_back(m_tree.records[random() % m_tree.records.size()]);
    }
}

std::vector<Operation> DriveWorkload::operations()
{
    const Read all = [](Drive& drive) { return drive.readAll(); };
    const Read children = [this](Drive& drive) { return drive.children(m_tree.largeFolder); };
    const Read byId = [this](Drive& drive) {
        DriveRecords found;
        found.reserve(m_looked.size());
        for (const auto& record : m_looked) {
            found.push_back(drive.byId(record.GetFileid()));
        }
        return found;
    };
    return {
        {"insert", "insert, six indexes", 1.06, inserting(true), insertMemoryTarget},
        {"insert-bare", "insert, no index", 1.06, inserting(false), insertMemoryTarget},
        {"read-all", "read all", 1.08, reading(all, m_tree.records), {}},
        {"children",
         fmt::format("children of a folder of {}", m_children.size()),
         1.05,
         reading(children, m_children),
         {}},
        {"by-id", fmt::format("one by id, {} times", m_looked.size()), 1.05, reading(byId, m_looked), {}},
        {"update", fmt::format("marker update of {}", m_marked.size()), 1.05, updating(), {}},
    };
}

template <class Make> std::vector<Contender> DriveWorkload::contenders(Make make)
{
    return {make(m_library), make(m_expert), make(m_keptExpert)};
}

std::vector<Contender> DriveWorkload::inserting(bool withIndexes)
{
    return contenders([this, withIndexes](Drive& drive) {
        Contender contender;
        contender.name = drive.name();
        contender.prepare = [this, &drive, withIndexes] { openFresh(drive, withIndexes); };
        contender.run = [this, &drive] { drive.insert(m_tree.records); };
        contender.check = [this, &drive] {
            drive.close();
            Drive& reader = otherThan(drive);
            reader.open(m_fresh);
            const std::size_t rows = requireEqual(reader.readAll(), m_tree.records);
            std::filesystem::remove_all(m_fresh);
            return rows;
        };
        return contender;
    });
}

std::vector<Contender> DriveWorkload::reading(const Read& read, const DriveRecords& expected)
{
    return contenders([this, &read, &expected](Drive& drive) {
        Contender contender;
        contender.name = drive.name();
        contender.prepare = [this, &drive] { openFull(drive); };
        contender.run = [this, &drive, read] { m_result = read(drive); };
        contender.check = [this, &drive, &expected] {
            drive.close();
            return requireEqual(std::exchange(m_result, {}), expected);
        };
        return contender;
    });
}

std::vector<Contender> DriveWorkload::updating()
{
    return contenders([this](Drive& drive) {
        Contender contender;
        contender.name = drive.name();
        contender.prepare = [this, &drive] {
            setMarkers(m_marked, ++m_stamp);
            openFull(drive);
        };
        contender.run = [this, &drive] { drive.updateMarkers(m_marked); };
        contender.check = [this, &drive] {
            drive.close();
            Drive& reader = otherThan(drive);
            reader.open(m_full);
            return requireEqual(reader.children(m_tree.largeFolder), m_marked);
        };
        return contender;
    });
}

void DriveWorkload::openFresh(Drive& drive, bool withIndexes)
{
    std::filesystem::remove_all(m_fresh);
    std::filesystem::create_directory(m_fresh);
    m_library.open(m_fresh);
    m_library.create();
    if (!withIndexes) {
        m_library.dropIndexes();
    }
    drive.open(m_fresh);
}

void DriveWorkload::openFull(Drive& drive)
{
    if (!m_filled) {
        std::filesystem::create_directory(m_full);
        m_library.open(m_full);
        m_library.create();
        m_library.insert(m_tree.records);
        m_filled = true;
    }
    drive.open(m_full);
}

// Who checks on `drive`: the expert on the library, and the library on the experts.
Drive& DriveWorkload::otherThan(const Drive& drive)
{
    if (&drive == &m_library) {
        return m_expert;
    }
    return m_library;
}

} // namespace benchmarks
