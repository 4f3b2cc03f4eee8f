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
        const auto put = [](auto& member, const auto& value) {
            if constexpr (std::is_same_v<decltype(member), std::wstring&>) {
                member = platform::toWide(value);
            } else {
                member = value;
            }
        };
#define PUT(member, value) if constexpr (requires { record.member; }) put(record.member, value)
        PUT(id, row); PUT(Id, row); PUT(fileId, id(row)); PUT(FileId, id(row)); PUT(UniqueId, id(row));
        PUT(AlbumId, id(row)); PUT(AlbumVersion, id(row)); PUT(key, id(row)); PUT(parentId, id(row % 3));
        PUT(fileName, text(number)); PUT(FileName, text(number)); PUT(AlbumName, text(number));
        PUT(Cursor, text(number)); PUT(cursor, text(number)); PUT(startCursor, text(number));
        PUT(Title, text(number)); PUT(info, text(number)); PUT(value, text(number));
        PUT(modifiedTime, number); PUT(UpdataTime, number); PUT(TaskStatus, number % 5);
#undef PUT
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
