#pragma once

#include "databaseservice/clientconstants.h"
#include "databaseservice/clouddriverdb.h"

#include <array>
#include <cstdint>

/// What the numbers `classIndex` and `fileExtSign` of a scanned tree stand for. The library stores them as they are
/// given; these meanings are the tool's own.
namespace dbservice {

/// The values of `classIndex`.
enum class FileClass : std::int32_t {
    Folder = 0,
    Picture = 2, ///< raw photographs too
    Video = 4,
    Audio = 8,
    Document = 16, ///< spreadsheets and presentations too
    Other = 32,    ///< archives, programs, data, links and whatever is not known
};

struct KnownClass {
    FileClass number;
    DatabaseService::CLOUD_DB_VIEW_TYPE view;
    const char* word; ///< on the command line
    const char* name;
};

inline constexpr std::array<KnownClass, 5> fileClasses{
    {{FileClass::Picture, DatabaseService::CLOUD_DB_VIEW_CLASS2, "picture", "pictures"},
     {FileClass::Video, DatabaseService::CLOUD_DB_VIEW_CLASS4, "video", "videos"},
     {FileClass::Audio, DatabaseService::CLOUD_DB_VIEW_CLASS8, "audio", "audio"},
     {FileClass::Document, DatabaseService::CLOUD_DB_VIEW_CLASS16, "document", "documents"},
     {FileClass::Other, DatabaseService::CLOUD_DB_VIEW_CLASS32, "other", "other files"}}};

FileClass classOf(DatabaseService::ClientConstants::ExtensionGroup group) noexcept;

/// The value of `fileExtSign`: the number of the extension's group, so that a sort brings like kinds together;
/// 0 for folders, links and files of no known kind.
std::int32_t extensionSign(DatabaseService::ClientConstants::ExtensionGroup group) noexcept;

} // namespace dbservice
