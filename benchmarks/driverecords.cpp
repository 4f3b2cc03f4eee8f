#include "driverecords.h"

#include "random.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <functional>
#include <string_view>

namespace benchmarks {

using DatabaseService::DriveDataTable;

namespace {

constexpr std::array<std::string_view, 24> words{
    "Report",      "invoice",       "Holiday plan", "meeting notes", "budget",       "Contract",
    "draft",       "Presentation",  "CV",           "receipt",       "Überweisung",  "résumé",
    "Straße Köln", "Отчёт за март", "Договор",      "会议记录",      "年度总结报告", "写真",
    "領収書",      "보고서",        "Εικόνα",       "صورة",          "รูปภาพ",        "Ação nº"};

constexpr std::array<std::string_view, 10> folderWords{"Photos", "Documents", "Projects", "Archive",   "Camera",
                                                       "Steuer", "音乐",      "Музыка",   "Downloads", "2023"};

struct FileType {
    std::string_view extension;
    std::string_view mimeType;
    int classIndex;
    int extensionSign;
};

constexpr FileType photo{"JPG", "image/jpeg", 2, 1};
constexpr std::array<FileType, 12> fileTypes{
    photo,
    photo,
    {"png", "image/png", 2, 2},
    {"heic", "image/heic", 2, 3},
    {"mp4", "video/mp4", 4, 4},
    {"mp3", "audio/mpeg", 8, 5},
    {"pdf", "application/pdf", 16, 6},
    {"docx", "application/vnd.openxmlformats-officedocument.wordprocessingml.document", 16, 7},
    {"xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet", 16, 8},
    {"txt", "text/plain", 16, 9},
    {"zip", "application/zip", 32, 10},
    {"cpp", "text/x-c++src", 32, 11}};

std::string photoName(Random& random)
{
    switch (random.below(4)) {
    case 0:
        return fmt::format("DSC{:05}.JPG", random.below(100000));
    case 1:
        return fmt::format("{}{:02}{:02}_{:06}.jpg", 2012 + random.below(12), 1 + random.below(12),
                           1 + random.below(28), random.below(235960));
    default:
        return fmt::format("IMG_{:04}.JPG", random.below(10000));
    }
}

std::string fileName(Random& random, const FileType& type)
{
    if (type.extension == photo.extension) {
        return photoName(random);
    }
    const std::string_view word = random.of(words);
    switch (random.below(6)) {
    case 0:
        return fmt::format("{} ({}).{}", word, 1 + random.below(30), type.extension);
    case 1:
        return fmt::format("{} {}-{:02}-{:02}.{}", word, 2012 + random.below(12), 1 + random.below(12),
                           1 + random.below(28), type.extension);
    case 2:
        return fmt::format("{}_v{}_final.{}", word, 1 + random.below(12), type.extension);
    case 3:
        return fmt::format("scan{:018}.{}", random.below(1000000000), type.extension);
    case 4:
        return fmt::format("{} {} {}.{}", word, random.of(words), random.below(2000), type.extension);
    default:
        return fmt::format("{}.{}", word, type.extension);
    }
}

// What files and folders have in common.
DriveDataTable makeItem(Random& random, const std::string& name, const std::string& parentId)
{
    const std::int64_t created = 1325376000000 + static_cast<std::int64_t>(random.below(378'000'000)) * 1000;
    DriveDataTable item;
    item.SetFileid(random.letters(idAlphabet, 30));
    item.SetName(name);
    item.SetParentId(parentId);
    item.SetContentVersion(fmt::format("{}", 1 + random.below(9)));
    item.SetCreatedTime(created);
    item.SetModifiedTime(created + static_cast<std::int64_t>(random.below(20'000'000)));
    item.SetFavorite(random.oneIn(40) ? 1 : 0);
    item.SetVersion(static_cast<std::int64_t>(1000 + random.below(1'000'000)));
    item.SetIsSync(1);
    item.SetCloudContentStatus(1);
    if (random.oneIn(30)) {
        item.SetRecycled(1);
        item.SetDirectlyRecycled(1);
        item.SetRecycledTime(created / 1000 + 86400);
    }
    if (random.oneIn(20)) {
        item.SetDescription(fmt::format("{}, {}", random.of(words), random.of(words)));
    }
    return item;
}

DriveDataTable makeFolder(Random& random, const std::string& parentId)
{
    DriveDataTable folder =
        makeItem(random, fmt::format("{} {}", random.of(folderWords), 1 + random.below(400)), parentId);
    folder.SetMimeType(DriveDataTable::folderMimeType);
    folder.SetClassIndex(1);
    return folder;
}

DriveDataTable makeFile(Random& random, const FileType& type, const std::string& parentId)
{
    DriveDataTable file = makeItem(random, fileName(random, type), parentId);
    const std::string id = file.GetFileid();
    file.SetMimeType(std::string(type.mimeType));
    file.SetClassIndex(type.classIndex);
    file.SetFileExtSign(type.extensionSign);
    file.SetSize(static_cast<std::int64_t>(random.below(std::size_t{1} << (8 + random.below(24)))));
    file.SetHash(random.letters(hexAlphabet, 64));
    if (type.classIndex == 2 || type.classIndex == 4) {
        file.SetThumbnailDownloadLink(fmt::format("https://content.example/thumbnail/{}?size=256", id));
        file.SetLcdImageDownloadLink(fmt::format("https://content.example/image/{}?size=1920", id));
    }
    if (random.oneIn(3)) {
        file.SetLocalAbsolutePath(fmt::format("D:/Users/somebody/Drive/{}/{}/{}", random.of(folderWords),
                                              random.of(folderWords), file.GetName()));
        file.SetLocalFileSha256(file.GetHash());
    }
    return file;
}

template <class... Values> std::uint64_t mixed(std::uint64_t sum, const Values&... values)
{
    ((sum = (sum ^ std::hash<Values>{}(values)) * 0x9E3779B97F4A7C15U, sum ^= sum >> 29), ...);
    return sum;
}

} // namespace

std::size_t largeFolderSize(std::size_t rows)
{
    return std::min<std::size_t>(20'000, rows / 5);
}

DriveTree makeDriveTree(std::size_t rows)
{
    Random random;
    DriveTree tree;
    tree.records.reserve(rows);
    tree.records.push_back(makeFolder(random, "root"));
    tree.largeFolder = tree.records.front().GetFileid();
    tree.firstChild = tree.records.size();
    tree.children = largeFolderSize(rows);
    for (std::size_t i = 0; i < tree.children; ++i) {
        tree.records.push_back(makeFile(random, photo, tree.largeFolder));
    }

    std::vector<std::string> folders{"root"};
    std::string parent = folders.front();
    while (tree.records.size() < rows) {
        if (random.oneIn(30)) {
            parent = random.of(folders);
        }
        if (random.oneIn(25)) {
            tree.records.push_back(makeFolder(random, parent));
            folders.push_back(tree.records.back().GetFileid());
        } else {
            tree.records.push_back(makeFile(random, random.of(fileTypes), parent));
        }
    }
    return tree;
}

void setMarkers(DriveRecords& records, std::int64_t stamp)
{
    // Large enough for all stamps to take the same number of bytes.
    const std::int64_t batch = 1'700'000'000 + stamp;
    std::int64_t number = 0;
    for (DriveDataTable& record : records) {
        record.SetRenameName(fmt::format("Renamed {:05} {:04}.JPG", ++number, stamp % 10000));
        record.SetRenameTime(batch);
        record.SetRenameBatchId(batch);
        record.SetMoveParentId(record.GetParentId());
        record.SetMoveTime(batch);
        record.SetMoveBatchId(batch);
        record.SetSoftDelete(1);
        record.SetSoftDeleteSrcPath("/Photos/Camera");
        record.SetSoftDelTime(batch);
        record.SetSoftDelBatchId(batch);
        record.SetHardDelTime(batch);
        record.SetHardDelBatchId(batch);
        record.SetLocalRestore(1);
        record.SetRestoreTime(batch);
        record.SetRestoreBatchId(batch);
        record.SetUploadTime(batch);
        record.SetUploadBatchId(batch);
        record.SetNewBatchId(batch);
    }
}

std::uint64_t checksum(const DriveRecords& records)
{
    std::uint64_t sum = records.size();
    for (const DriveDataTable& r : records) {
        sum = mixed(sum, r.GetFileid(), r.GetName(), r.GetKind(), r.GetMimeType(), r.GetDescription(), r.GetSize(),
                    r.GetAttachmentSize(), r.GetHash(), r.GetContentVersion(), r.GetParentId(), r.GetFavorite(),
                    r.GetRecycled(), r.GetDirectlyRecycled(), r.GetCreatedTime(), r.GetModifiedTime(),
                    r.GetRecycledTime(), r.GetIsSync(), r.GetThumbnailDownloadLink(), r.GetLcdImageDownloadLink(),
                    r.GetVersion(), r.GetBatchOper(), r.GetLocalAbsolutePath(), r.GetLocalFileSha256(),
                    r.GetDeleteSrcPath(), r.GetUploadTime(), r.GetRenameName(), r.GetRenameTime(), r.GetMoveParentId(),
                    r.GetMoveTime(), r.GetSoftDelete(), r.GetSoftDeleteSrcPath(), r.GetSoftDelTime(), r.GetHardDelete(),
                    r.GetHardDelTime(), r.GetLocalRestore(), r.GetRestoreTime(), r.GetUploadBatchId(),
                    r.GetRenameBatchId(), r.GetMoveBatchId(), r.GetSoftDelBatchId(), r.GetHardDelBatchId(),
                    r.GetRestoreBatchId(), r.GetNewBatchId(), r.GetAutoUpload(), r.GetRiskFileSign(),
                    r.GetRiskFileType(), r.GetFileExtSign(), r.GetCloudContentStatus(), r.GetClassIndex(), r.GetData1(),
                    r.GetData2(), r.GetData3(), r.GetData4());
    }
    return sum;
}

} // namespace benchmarks
