#pragma once

#include "databaseservice/engine/recordcolumns.h"
#include "databaseservice/fastaccesstable.h"

#include <array>

namespace DatabaseService {

/// The table `FastAccess`, column by column.
struct FastAccessColumns {
    enum Group : unsigned {
        Key = 1,
        Data = 2,
        Added = 4, ///< not in the table as created; an upgrade, which declares it, adds it on new files too
    };

    static constexpr std::array table{
        // clang-format off
        column<&FastAccessTable::Id>("Id", "INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL", Key),
        column<&FastAccessTable::Index>("[Index]", "INTEGER", Data),
        column<&FastAccessTable::DataType>("DataType", "INTEGER", Data),
        column<&FastAccessTable::IconPath>("IconPath", "TEXT", Data),
        column<&FastAccessTable::Title>("Title", "TEXT", Data),
        column<&FastAccessTable::Tip>("Tip", "TEXT", Data),
        column<&FastAccessTable::UpdataTime>("UpdataTime", "INTEGER", Data),
        column<&FastAccessTable::FilePath>("FilePath", "TEXT", Data),
        column<&FastAccessTable::FileId>("FileId", "TEXT", Data),
        column<&FastAccessTable::ParentId>("ParentId", "TEXT", Data),
        column<&FastAccessTable::Rotate>("Rotate", {}, Added),
        // clang-format on
    };
    static_assert(table.size() == 11);
};

} // namespace DatabaseService
