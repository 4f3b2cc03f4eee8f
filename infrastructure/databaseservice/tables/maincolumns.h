#pragma once

#include "databaseservice/carditems.h"
#include "databaseservice/cloudfiletable.h"
#include "databaseservice/engine/recordcolumns.h"
#include "databaseservice/userlog.h"
#include "databaseservice/userproperties.h"

namespace DatabaseService {

/// The tables of `main.dat`, column by column.

struct CloudFileColumns {
    enum Group : unsigned {
        Id = 1,
        Data = 2,
        All = Id | Data,
    };

    static constexpr std::array table{
        // clang-format off
        strictColumn<&T_CloudFileTable::id>("id", "INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL", Id),
        strictColumn<&T_CloudFileTable::fileId>("fileId", "TEXT NOT NULL", Data),
        strictColumn<&T_CloudFileTable::deleted>("deleted", "TEXT NOT NULL", Data),
        strictColumn<&T_CloudFileTable::changeType>("changeType", "TEXT NOT NULL", Data),
        strictColumn<&T_CloudFileTable::fromDevice>("fromDevice", "TEXT NOT NULL", Data),
        strictColumn<&T_CloudFileTable::kind>("kind", "TEXT NOT NULL", Data),
        strictColumn<&T_CloudFileTable::fileName>("fileName", "TEXT NOT NULL", Data),
        strictColumn<&T_CloudFileTable::localFileName>("localFileName", "TEXT NOT NULL", Data),
        strictColumn<&T_CloudFileTable::mimeType>("mimeType", "TEXT NOT NULL", Data),
        strictColumn<&T_CloudFileTable::isFolder>("isFolder", "INTEGER NOT NULL", Data),
        strictColumn<&T_CloudFileTable::trashed>("trashed", "INTEGER NOT NULL", Data),
        strictColumn<&T_CloudFileTable::parentId>("parentId", "TEXT NOT NULL", Data),
        strictColumn<&T_CloudFileTable::parentFolder>("parentFolder", "TEXT NOT NULL", Data),
        strictColumn<&T_CloudFileTable::localParentId>("localParentId", "TEXT NOT NULL", Data),
        strictColumn<&T_CloudFileTable::localParentFolder>("localParentFolder", "TEXT NOT NULL", Data),
        strictColumn<&T_CloudFileTable::createdTime>("createdTime", "INTEGER NOT NULL", Data),
        strictColumn<&T_CloudFileTable::modifiedTime>("modifiedTime", "INTEGER NOT NULL", Data),
        strictColumn<&T_CloudFileTable::localModifiedTime>("localModifiedTime", "INTEGER NOT NULL", Data),
        strictColumn<&T_CloudFileTable::size>("size", "INTEGER NOT NULL", Data),
        strictColumn<&T_CloudFileTable::thunbnailDownloadLink>("thunbnailDownloadLink", "TEXT NOT NULL", Data),
        strictColumn<&T_CloudFileTable::localThunbnailDownload>("localThunbnailDownload", "TEXT NOT NULL", Data),
        strictColumn<&T_CloudFileTable::status>("status", "INTEGER NOT NULL", Data),
        strictColumn<&T_CloudFileTable::fileStatus>("fileStatus", "INTEGER NOT NULL", Data),
        strictColumn<&T_CloudFileTable::isSyncDown>("isSyncDown", "INTEGER NOT NULL", Data),
        strictColumn<&T_CloudFileTable::isRiskFile>("isRiskFile", "INTEGER NOT NULL", Data),
        strictColumn<&T_CloudFileTable::imageRotate>("imageRotate", "INTEGER NOT NULL", Data),
        // clang-format on
    };
    static_assert(table.size() == 26);
};

/// `T_NotepadCard` and `T_WaitHandleCardItem`.
template <class Card> struct CardColumns {
    enum Group : unsigned { All = 1 };

    static constexpr std::array table{
        // clang-format off
        strictColumn<&Card::key>("[key]", "INTEGER PRIMARY KEY NOT NULL", All),
        strictColumn<&Card::value>("value", "TEXT NOT NULL", All),
        // clang-format on
    };
};

/// `UserLogTable` and `UBAUserLog`.
struct UserLogColumns {
    enum Group : unsigned { All = 1 };

    static constexpr std::array table{
        // clang-format off
        column<&UserLogFields::id>("id", "INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL", All),
        column<&UserLogFields::time>("time", "TEXT NOT NULL", All),
        column<&UserLogFields::action>("[action]", "TEXT NOT NULL", All),
        column<&UserLogFields::userId>("userId", "TEXT NOT NULL", All),
        column<&UserLogFields::devId>("devId", "TEXT NOT NULL", All),
        column<&UserLogFields::code>("code", "TEXT NOT NULL", All),
        column<&UserLogFields::info>("info", "TEXT NOT NULL", All),
        column<&UserLogFields::extend>("extend", "TEXT NOT NULL", All),
        column<&UserLogFields::traceId>("traceId", "TEXT NOT NULL", All),
        column<&UserLogFields::useTime>("useTime", "REAL NOT NULL", All),
        column<&UserLogFields::startTime>("startTime", "REAL NOT NULL", All),
        column<&UserLogFields::model>("model", "TEXT NOT NULL", All),
        column<&UserLogFields::romversion>("romversion", "TEXT NOT NULL", All),
        column<&UserLogFields::appversion>("appversion", "TEXT NOT NULL", All),
        column<&UserLogFields::reqsize>("reqsize", "TEXT NOT NULL", All),
        column<&UserLogFields::rspsize>("rspsize", "TEXT NOT NULL", All),
        column<&UserLogFields::logversion>("logversion", "INTEGER NOT NULL", All),
        column<&UserLogFields::traceEndFlag>("traceEndFlag", "INTEGER NOT NULL", All),
        column<&UserLogFields::curModule>("curModule", "TEXT NOT NULL", All),
        column<&UserLogFields::actionType>("actionType", "TEXT NOT NULL", All),
        column<&UserLogFields::nextModule>("nextModule", "TEXT NOT NULL", All),
        column<&UserLogFields::countryCode>("countryCode", "TEXT NOT NULL", All),
        column<&UserLogFields::residenceTime>("residenceTime", "REAL NOT NULL", All),
        column<&UserLogFields::oprType>("oprType", "TEXT NOT NULL", All),
        column<&UserLogFields::isMainteranceLog>("isMainteranceLog", "INTEGER NOT NULL", All),
        // clang-format on
    };
    static_assert(table.size() == 25);
};

struct UserPropertiesColumns {
    enum Group : unsigned { All = 1 };

    static constexpr std::array table{
        // clang-format off
        strictColumn<&UserProperties::key>("[Key]", "TEXT PRIMARY KEY NOT NULL", All),
        strictColumn<&UserProperties::value>("Value", "TEXT", All),
        // clang-format on
    };
};

} // namespace DatabaseService
