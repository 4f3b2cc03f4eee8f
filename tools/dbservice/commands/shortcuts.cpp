#include "clientservices/globalparamwrapper.h"
#include "command.h"
#include "databaseservice/fastaccessdbmodule.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "stores/session.h"
#include "stores/storefile.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/recordfields.h"
#include "terminal/table.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <future>
#include <iostream>
#include <memory>
#include <optional>

namespace dbservice {

using DatabaseService::FastAccessTable;
using DatabaseService::int64;
using DatabaseService::uint64;
using DatabaseService::FastAccessDB::FastAccessDBModule;
namespace fs = std::filesystem;

namespace {

using ShortcutField = MemberField<FastAccessTable>;

constexpr std::array fields{
    ShortcutField{"Id", &FastAccessTable::Id},
    ShortcutField{"Index", &FastAccessTable::Index},
    ShortcutField{"DataType", &FastAccessTable::DataType},
    ShortcutField{"IconPath", &FastAccessTable::IconPath},
    ShortcutField{"Title", &FastAccessTable::Title},
    ShortcutField{"Tip", &FastAccessTable::Tip},
    ShortcutField{"UpdataTime", &FastAccessTable::UpdataTime, Shown::Time},
    ShortcutField{"FilePath", &FastAccessTable::FilePath},
    ShortcutField{"FileId", &FastAccessTable::FileId},
    ShortcutField{"ParentId", &FastAccessTable::ParentId},
    ShortcutField{"Rotate", &FastAccessTable::Rotate},
};

constexpr const char* tableName = "FastAccess";

struct RemoveOptions {
    int id = 0;
    std::string cache;
};

void requirePosted(bool posted)
{
    if (!posted) {
        throw Failure("cannot reach the shortcuts: their module has stopped");
    }
}

/// Posts a request and waits for the answer, which `read` takes from the callback's address on the module's thread.
/// Throws if the request ends without a callback.
template <class Post, class Read> auto answerOf(Post post, Read read)
{
    using Answer = decltype(read(int64{}));
    auto promise = std::make_shared<std::promise<Answer>>();
    std::future<Answer> answer = promise->get_future();
    requirePosted(post(
        [promise = std::move(promise), read](uint64 /*code*/, int64 address) { promise->set_value(read(address)); }));
    return answer.get();
}

std::vector<FastAccessTable> takeRecords(int64 address)
{
    using Records = std::vector<FastAccessTable*>;
    const std::unique_ptr<Records> records(reinterpret_cast<Records*>(static_cast<std::intptr_t>(address)));
    std::vector<FastAccessTable> rows;
    for (FastAccessTable* const record : *records) {
        const std::unique_ptr<FastAccessTable> owned(record);
        rows.push_back(std::move(*owned));
    }
    return rows;
}

/// All rows of the store, the highest index first.
std::vector<FastAccessTable> readAll(FastAccessDBModule& module)
{
    return answerOf([&](auto callback) { return module.GetAllFastAccessData(std::move(callback)); }, takeRecords);
}

/// The id that the store gives to the record.
int insert(FastAccessDBModule& module, FastAccessTable record)
{
    return answerOf([&](auto callback) { return module.InsertFastAccessData(&record, std::move(callback)); },
                    [](int64 address) {
                        return reinterpret_cast<const FastAccessTable*>(static_cast<std::intptr_t>(address))->Id;
                    });
}

FastAccessDBModule& openForWriting(Session& session)
{
    session.editStore(shortcutFileName);
    return session.module<FastAccessDBModule>();
}

std::optional<FastAccessTable> find(FastAccessDBModule& module, int id)
{
    const std::vector<FastAccessTable> rows = readAll(module);
    const auto found = std::find_if(rows.begin(), rows.end(), [&](const auto& row) { return row.Id == id; });
    return found == rows.end() ? std::nullopt : std::optional(*found);
}

void show(const Session& session, const std::vector<FastAccessTable>& rows)
{
    Table table({{"Id", Table::Align::Right}, {"Index", Table::Align::Right}, {"Title"}, {"Target"}});
    for (const FastAccessTable& row : rows) {
        table.add({std::to_string(row.Id), std::to_string(row.Index), row.Title,
                   row.FilePath.empty() && !row.FileId.empty() ? "id:" + row.FileId : row.FilePath});
        if (session.json()) {
            std::cout << toLine(toJson(fields, row)) << '\n';
        }
    }
    if (!session.json()) {
        table.print(std::cout, Session::outputWidth());
    }
}

int list(Session& session)
{
    session.readStore(shortcutFileName, ReadableStore::Copy::Always);
    const bool hasTable = StoreFile(shortcutFileName).hasTable(tableName);
    session.stopIfFailed("read the shortcuts");
    if (!hasTable) {
        throw Failure("cannot read the shortcuts: " + std::string(shortcutFileName) + " has no table " + tableName);
    }
    const std::vector<FastAccessTable> rows = readAll(session.module<FastAccessDBModule>());
    session.stopIfFailed("read the shortcuts");
    show(session, rows);
    return 0;
}

int add(Session& session, FastAccessTable record)
{
    FastAccessDBModule& module = openForWriting(session);
    record.UpdataTime = GlobalParamWrapper::GetInstance()->GetServerTime();
    record.Id = insert(module, record);
    session.stopIfFailed("add the shortcut");
    const std::optional<FastAccessTable> found = find(module, record.Id);
    if (!found || toJson(fields, *found) != toJson(fields, record)) {
        throw Failure("cannot find the new shortcut in the store");
    }
    show(session, {*found});
    return 0;
}

/// The library deletes the file of an icon of the store's own, wherever its path leads. This takes care that it leads
/// to a file below the cache.
void checkIcon(const FastAccessTable& row, const std::string& cache)
{
    if (row.IconPath.find("FastAccess") == std::string::npos) {
        return;
    }
    if (cache.empty()) {
        throw Failure("cannot remove the shortcut: its icon " + row.IconPath +
                      " goes along, and lies below the user's cache path; name that with --cache PATH");
    }
    const fs::path folder = fs::absolute(pathFromArgument(cache + '/')).lexically_normal();
    const fs::path icon = fs::absolute(pathFromArgument(cache + row.IconPath)).lexically_normal();
    const auto [end, ignored] = std::mismatch(folder.begin(), std::prev(folder.end()), icon.begin(), icon.end());
    if (end != std::prev(folder.end())) {
        throw Failure("cannot remove the shortcut: its icon, which goes along, would be " + platform::toUtf8(icon) +
                      ", outside the cache");
    }
}

int remove(Session& session, const RemoveOptions& options)
{
    FastAccessDBModule& module = openForWriting(session);
    const std::optional<FastAccessTable> row = find(module, options.id);
    session.stopIfFailed("read the shortcuts");
    if (!row) {
        throw Failure("cannot find the shortcut " + std::to_string(options.id));
    }
    checkIcon(*row, options.cache);
    GlobalParamWrapper::GetInstance()->SetUserCachePath(platform::toWide(options.cache));
    requirePosted(module.DeleteFastAccessData(options.id));
    if (find(module, options.id)) { // posted behind the deletion, so it comes after it
        throw Failure("cannot remove the shortcut " + std::to_string(options.id) + ": it is still there");
    }
    show(session, {*row});
    return 0;
}

} // namespace

Command shortcutsCommand()
{
    return {
        .name = "shortcuts",
        .group = group::otherStores,
        .summary = "Show and change the shortcut list",
        .example = "dbservice shortcuts list",
        .parts =
            {
                {
                    .name = "list",
                    .summary = "List the shortcuts, the highest index first",
                    .details = "With --json each line is a row with its stored columns.",
                    .example = "dbservice --json shortcuts list",
                    .run = list,
                },
                {
                    .name = "add",
                    .summary = "Add a shortcut, and show it as it is stored",
                    .arguments =
                        {
                            text<&FastAccessTable::Title>("--title", "What the list shows", {.required = true}),
                            text<&FastAccessTable::Tip>("--tip", "What it shows on pointing"),
                            text<&FastAccessTable::IconPath>("--icon", "The icon's path"),
                            text<&FastAccessTable::FilePath>("--path", "The target's path"),
                            text<&FastAccessTable::FileId>("--id", "The target's id in the drive"),
                            text<&FastAccessTable::ParentId>("--parent", "The id of the folder that contains it"),
                            argument<&FastAccessTable::Index>("--index", "Its place in the list",
                                                              {.showsDefault = true}),
                            argument<&FastAccessTable::DataType>("--type", "Its kind, a number of the client's",
                                                                 {.showsDefault = true}),
                            argument<&FastAccessTable::Rotate>("--rotate", "The turn of its icon",
                                                               {.showsDefault = true}),
                        },
                    .details = "The time of the last change is now, in seconds since 1970 UTC.",
                    .example = "dbservice shortcuts add --title Best --path /Photos/best --index 1",
                    .run = add,
                },
                {
                    .name = "remove",
                    .summary = "Remove a shortcut, and show what it was",
                    .arguments = {argument<&RemoveOptions::id>("ID", "As the list has it", {.required = true}),
                                  text<&RemoveOptions::cache>(
                                      "--cache",
                                      "The user's cache path, for a shortcut whose icon's path holds FastAccess: that "
                                      "file is deleted too. The two are joined as they are, without a separator")},
                    .example = "dbservice shortcuts remove 2",
                    .run = remove,
                },
            },
    };
}

} // namespace dbservice
