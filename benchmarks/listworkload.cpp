#include "listworkload.h"

#include "librarydrive.h"
#include "platform/namecompare.h"

#include <algorithm>
#include <fmt/format.h>
#include <stdexcept>
#include <utility>

namespace benchmarks {

using namespace DatabaseService;

namespace {

constexpr std::size_t pageSize = 100;

// As a person who knows the table's columns by heart writes the library's statements.
constexpr const char* select =
    "select fileId, name, kind, mimeType, description, size, attachmentSize, hash, contentVersion, parentId, favorite, "
    "recycled, directlyRecycled, createdTime, modifiedTime, recycledTime, isSync, thumbnailDownloadLink, "
    "LCDImageDownloadLink, version, batchOper, localAbsolutePath, localFileSha256, deleteSrcPath, uploadTime, "
    "renameName, renameTime, moveParentId, moveTime, softDelete, softDeleteSrcPath, softDelTime, hardDelete, "
    "hardDelTime, localRestore, restoreTime, uploadBatchId, renameBatchId, moveBatchId, softDelBatchId, "
    "hardDelBatchId, restoreBatchId, newBatchId, autoUpload, riskFileSign, riskFileType, fileExtSign, needToDisplay, "
    "classIndex, data1, data2, data3, data4 from DriveDataTable where ";
constexpr const char* count = "select count(*) from DriveDataTable where ";
constexpr const char* live = "recycled = 0 and directlyRecycled = 0 and softDelBatchId = 0";
constexpr const char* shown = "(needToDisplay = 0 or needToDisplay = 1)";
constexpr const char* file = "mimeType != 'application/vnd.tessix-apps.folder'";
constexpr const char* folder = "mimeType = 'application/vnd.tessix-apps.folder'";

bool isLive(const DriveDataTable& record)
{
    return record.GetRecycled() == 0 && record.GetDirectlyRecycled() == 0 && record.GetSoftDelBatchId() == 0;
}

int byName(const DriveDataTable& left, const DriveDataTable& right)
{
    return platform::compareNames(left.GetName(), right.GetName());
}

int bySize(const DriveDataTable& left, const DriveDataTable& right)
{
    const int order = left.GetSize() < right.GetSize() ? -1 : left.GetSize() > right.GetSize() ? 1 : 0;
    return order != 0 ? order : byName(left, right);
}

std::size_t requireEqual(const DriveRecords& records, const DriveRecords& expected)
{
    if (records.size() != expected.size() || checksum(records) != checksum(expected)) {
        throw std::runtime_error(
            fmt::format("a list of {} other rows in place of {}", records.size(), expected.size()));
    }
    return records.size();
}

} // namespace

ListWorkload::ListWorkload(std::size_t rows, const std::filesystem::path& folder)
    : m_tree(makeDriveTree(rows)),
      m_folder(folder / "lists")
{
}

std::vector<Operation> ListWorkload::operations()
{
    const std::string& parent = m_tree.largeFolder;
    const std::string children =
        fmt::format("parentId = '{}' and {} and {} and moveBatchId = 0 and {}", parent, file, live, shown);
    const std::string images = fmt::format("classIndex=2 and {} and {} and {}", file, live, shown);
    const std::string firstRows = fmt::format(" limit 0, {}", pageSize);
    const auto isChild = [&parent](const DriveDataTable& record) {
        return record.GetParentId() == parent && !record.IsFolder() && isLive(record);
    };
    const auto isImage = [](const DriveDataTable& record) {
        return record.GetClassIndex() == 2 && !record.IsFolder() && isLive(record);
    };
    const auto page = [&parent](CLOUD_DB_SORT_TYPE sort) {
        return
            [parent, sort](Lists& lists, DriveRecords& out) { lists.QueryChildFile(parent, 0, pageSize, sort, out); };
    };
    return {
        lists("page-name", fmt::format("{} of {} by name", pageSize, m_tree.children), 1, page(CLOUD_DB_SORT_NAME_ASC),
              select + children + " order by name COLLATE NameCompare" + firstRows, firstPage(isChild, byName)),
        lists("page-size", fmt::format("{} of {} by size", pageSize, m_tree.children), 1, page(CLOUD_DB_SORT_SIZE_ASC),
              select + children + " order by size, name COLLATE NameCompare" + firstRows, firstPage(isChild, bySize)),
        counts(
            [parent](Lists& lists) {
                return Counts{lists.GetSubAllNumber(parent),  lists.GetSubFolderNumber(parent),
                              lists.GetSubFileNumber(parent), lists.GetTotalNumber(),
                              lists.GetTotalFolderNumber(),   lists.GetTypeTotalNumber(CLOUD_DB_VIEW_CLASS2)};
            },
            {fmt::format("{}parentId = '{}'", count, parent),
             fmt::format("{}parentId = '{}' and {} and {} and moveBatchId = 0 and {}", count, parent, folder, live,
                         shown),
             count + children, fmt::format("{}{}", count, live), fmt::format("{}{} and {}", count, live, folder),
             count + images},
            {static_cast<std::int64_t>(m_tree.children), 0, countOf(isChild), countOf(isLive),
             countOf([](const DriveDataTable& record) { return isLive(record) && record.IsFolder(); }),
             countOf(isImage)}),
        lists(
            "class", fmt::format("{} of a class by name, 20 times", pageSize), 20,
            [](Lists& lists, DriveRecords& out) {
                lists.QueryTypeFile(CLOUD_DB_VIEW_CLASS2, 0, pageSize, CLOUD_DB_SORT_NAME_ASC, out);
            },
            select + images + " order by name COLLATE NameCompare" + firstRows, firstPage(isImage, byName)),
    };
}

Operation ListWorkload::lists(const std::string& name, const std::string& title, std::size_t times,
                              const std::function<void(Lists&, DriveRecords&)>& library, const std::string& sql,
                              DriveRecords expected)
{
    const auto check = [this, expected = std::move(expected)] {
        return requireEqual(std::exchange(m_page, {}), expected);
    };
    const auto runLibrary = [this, times, library] {
        for (std::size_t i = 0; i < times; ++i) {
            m_page.clear();
            library(*m_library, m_page);
        }
    };
    const auto runExpert = [this, times, sql] {
        for (std::size_t i = 0; i < times; ++i) {
            m_page.clear();
            m_expert.select(sql, m_page);
        }
    };
    return operation(name, title, runLibrary, runExpert, check);
}

Operation ListWorkload::counts(const std::function<Counts(Lists&)>& library, const std::vector<std::string>& sql,
                               Counts expected)
{
    const auto check = [this, expected = std::move(expected)] {
        if (m_counts != expected) {
            throw std::runtime_error("other counts than those of the records");
        }
        return std::exchange(m_counts, {}).size();
    };
    const auto runLibrary = [this, library] { m_counts = library(*m_library); };
    const auto runExpert = [this, sql] {
        for (const std::string& statement : sql) {
            m_counts.push_back(m_expert.count(statement));
        }
    };
    return operation("counts", "six counts", runLibrary, runExpert, check);
}

Operation ListWorkload::operation(const std::string& name, const std::string& title,
                                  const std::function<void()>& runLibrary, const std::function<void()>& runExpert,
                                  const std::function<std::size_t()>& check)
{
    constexpr double target = 1.05;
    Contender library{"library, lists",
                      [this] {
                          fill();
                          m_library = std::make_unique<Lists>();
                      },
                      runLibrary,
                      [this, check] {
                          m_library.reset();
                          return check();
                      }};
    Contender expert{m_expert.name(),
                     [this] {
                         fill();
                         m_expert.open(m_folder);
                     },
                     runExpert,
                     [this, check] {
                         m_expert.close();
                         return check();
                     }};
    return {name, title, target, {std::move(library), std::move(expert)}, {}};
}

DriveRecords ListWorkload::firstPage(const Filter& filter, const Order& order) const
{
    std::vector<const DriveDataTable*> found;
    for (const DriveDataTable& record : m_tree.records) {
        if (filter(record)) {
            found.push_back(&record);
        }
    }
    // Equal rows come in the order in which they were written.
    std::stable_sort(found.begin(), found.end(), [&order](const DriveDataTable* left, const DriveDataTable* right) {
        return order(*left, *right) < 0;
    });
    found.resize(std::min(found.size(), pageSize));
    DriveRecords page;
    for (const DriveDataTable* record : found) {
        page.push_back(*record);
    }
    return page;
}

std::int64_t ListWorkload::countOf(const Filter& filter) const
{
    return std::count_if(m_tree.records.begin(), m_tree.records.end(), filter);
}

void ListWorkload::fill()
{
    if (!m_filled) {
        std::filesystem::create_directory(m_folder);
        LibraryDrive writer;
        writer.open(m_folder);
        writer.create();
        writer.insert(m_tree.records);
        Lists::InitDatabasePath((m_folder / "DriveModuleData.dat").wstring());
        m_filled = true;
    }
}

} // namespace benchmarks
