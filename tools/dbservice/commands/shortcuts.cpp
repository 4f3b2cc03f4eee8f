#include "clientservices/globalparamwrapper.h"
#include "commands/commands.h"
#include "databaseservice/fastaccessdbmodule.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "stores/session.h"
#include "stores/storefile.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/recordfields.h"
#include "terminal/table.h"
#include "textarguments.h"

#include <CLI/CLI.hpp>

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
    ShortcutField{"UpdataTime", &FastAccessTable::UpdataTime},
    ShortcutField{"FilePath", &FastAccessTable::FilePath},
    ShortcutField{"FileId", &FastAccessTable::FileId},
    ShortcutField{"ParentId", &FastAccessTable::ParentId},
    ShortcutField{"Rotate", &FastAccessTable::Rotate},
};

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
    requireWritable(shortcutFileName);
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

void addShortcuts(CLI::App& app, Command& chosen)
{
    CLI::App* const command = app.add_subcommand("shortcuts", "Show and change the shortcut list");
    command->require_subcommand(1);

    command->add_subcommand("list", "List the shortcuts, the highest index first")
        ->footer("With --json each line is a row with its stored columns.")
        ->callback([&chosen] { chosen = list; });

    const auto record = std::make_shared<FastAccessTable>();
    CLI::App* const adding = command->add_subcommand("add", "Add a shortcut, and show it as it is stored");
    addText(*adding, "--title", record->Title, "What the list shows")->required();
    addText(*adding, "--tip", record->Tip, "What it shows on pointing");
    addText(*adding, "--icon", record->IconPath, "The icon's path");
    addText(*adding, "--path", record->FilePath, "The target's path");
    addText(*adding, "--id", record->FileId, "The target's id in the drive");
    addText(*adding, "--parent", record->ParentId, "The id of the folder that contains it");
    adding->add_option("--index", record->Index, "Its place in the list")->capture_default_str();
    adding->add_option("--type", record->DataType, "Its kind, a number of the client's")->capture_default_str();
    adding->add_option("--rotate", record->Rotate, "The turn of its icon")->capture_default_str();
    adding->footer("The time of the last change is now, in seconds since 1970 UTC.");
    adding->callback([&chosen, record] { chosen = [record](Session& session) { return add(session, *record); }; });

    const auto options = std::make_shared<RemoveOptions>();
    CLI::App* const removing = command->add_subcommand("remove", "Remove a shortcut, and show what it was");
    removing->add_option("ID", options->id, "As the list has it")->required();
    addText(*removing, "--cache", options->cache,
            "The user's cache path, for a shortcut whose icon's path holds FastAccess: that file is deleted too. The "
            "two are joined as they are, without a separator");
    removing->callback(
        [&chosen, options] { chosen = [options](Session& session) { return remove(session, *options); }; });
}

} // namespace dbservice
