#pragma once

#include "databaseservice/drivedatatable.h"
#include "platform/text.h"
#include "support/drivefields.h"

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace testsupport {

inline std::string id(int number)
{
    return "id-" + std::to_string(number);
}

/// Long enough that a few rows fill a page, and now and then longer than one.
inline std::string text(int number)
{
    return id(number) + std::string(number % 7 == 0 ? 5000 : 200, static_cast<char>('a' + number % 26));
}

// clang-format off
/// A record of the row `number` below 1000. From there on it is the row of what is above 1000, with other values.
template <class Record> Record one(int number)
{
    const int row = number % 1000;
    if constexpr (std::is_same_v<Record, DatabaseService::DriveDataTable>) {
        DatabaseService::DriveDataTable record = filledRecord(id(row), number);
        record.SetParentId(row % 10 == 0 ? "root" : id(row / 10 * 10));
        record.SetName(text(number));
        record.SetHelpData(id(row));
        record.SetRecycled(0);
        return record;
    } else {
        Record record{};
        const auto put = [](auto& member, const std::string& value) {
            if constexpr (std::is_same_v<decltype(member), std::wstring&>) {
                member = platform::toWide(value);
            } else {
                member = value;
            }
        };
        if constexpr (requires { record.id; }) record.id = row;
        if constexpr (requires { record.Id; }) record.Id = row;
        if constexpr (requires { record.fileId; }) put(record.fileId, id(row));
        if constexpr (requires { record.FileId; }) put(record.FileId, id(row));
        if constexpr (requires { record.UniqueId; }) put(record.UniqueId, id(row));
        if constexpr (requires { record.AlbumId; }) put(record.AlbumId, id(row));
        if constexpr (requires { record.AlbumVersion; }) put(record.AlbumVersion, id(row));
        if constexpr (requires { record.key; }) put(record.key, id(row));
        if constexpr (requires { record.parentId; }) put(record.parentId, id(row % 3));
        if constexpr (requires { record.fileName; }) put(record.fileName, text(number));
        if constexpr (requires { record.FileName; }) put(record.FileName, text(number));
        if constexpr (requires { record.AlbumName; }) put(record.AlbumName, text(number));
        if constexpr (requires { record.Cursor; }) put(record.Cursor, text(number));
        if constexpr (requires { record.cursor; }) put(record.cursor, text(number));
        if constexpr (requires { record.startCursor; }) put(record.startCursor, text(number));
        if constexpr (requires { record.Title; }) put(record.Title, text(number));
        if constexpr (requires { record.info; }) put(record.info, text(number));
        if constexpr (requires { record.value; }) put(record.value, text(number));
        if constexpr (requires { record.modifiedTime; }) record.modifiedTime = number;
        if constexpr (requires { record.TaskStatus; }) record.TaskStatus = number % 5;
        if constexpr (requires { record.UpdataTime; }) record.UpdataTime = number;
        return record;
    }
}
// clang-format on

template <class Record, class List = std::vector<Record>> List many(int from, int to)
{
    List records;
    for (int number = from; number < to; ++number) {
        if constexpr (std::is_same_v<Record, typename List::value_type>) {
            records.push_back(one<Record>(number));
        } else {
            records.push_back(std::make_shared<Record>(one<Record>(number)));
        }
    }
    return records;
}
template <class Record> auto shared(int from, int to)
{
    return many<Record, std::vector<std::shared_ptr<Record>>>(from, to);
}
inline std::vector<std::string> ids(int from, int to)
{
    std::vector<std::string> all;
    for (int number = from; number < to; ++number) {
        all.push_back(id(number));
    }
    return all;
}
/// For operations that take their argument by a reference that is not const.
template <class Value> Value& lent(Value&& value)
{
    return value;
}

} // namespace testsupport
