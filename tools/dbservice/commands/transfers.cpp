#include "clientservices/globalparamwrapper.h"
#include "command.h"
#include "databaseservice/transdbconnthread.h"
#include "databaseservice/transmissiondbmodule.h"
#include "platform/text.h"
#include "stores/session.h"
#include "stores/storefile.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/recordfields.h"
#include "terminal/table.h"
#include "transfers/transfersimulation.h"
#include "transfers/transfertables.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <memory>
#include <optional>

namespace dbservice {

using namespace DatabaseService::TransmissionDB;

namespace {

/// In the order in which they are listed.
constexpr std::array<const TransferTable*, 4> tables{&uploadTable, &downloadTable, &completedTable, &taskTable};

struct AddOptions {
    std::string name;
    std::string fileId;
    std::string localPath;
    std::string parentId;
    std::string relativePath;
    std::string serverPath;
    std::string uniqueId;
    DatabaseService::int64 size = 0;
    int id = 0; ///< 0 for the next one
    int type = 0;
    int status = 0;
    int module = 0;
};

struct SimulateOptions {
    int transfers = 0;
    int threads = 4;
};

TransmissionDBModule& openForWriting(Session& session)
{
    session.editStore(transferFileName);
    auto& transfers = session.module<TransmissionDBModule>();
    transfers.OnUserLogin();
    session.stopIfFailed("lay down the transfer store");
    return transfers;
}

std::string shown(const Json& value)
{
    return value.isText() ? value.text() : toLine(value);
}

void showRows(const Session& session, const TransferTable& table, const std::vector<Json>& rows)
{
    if (session.json()) {
        for (const Json& row : rows) {
            Json line{{"table", table.name}};
            for (const auto& [name, value] : row.members()) {
                line[name] = value;
            }
            std::cout << toLine(line) << '\n';
        }
        return;
    }
    std::cout << table.name << ": " << counted(static_cast<std::int64_t>(rows.size()), "row", "rows") << '\n';
    if (rows.empty()) {
        return;
    }
    std::vector<Table::Column> columns;
    for (const char* name : table.listed) {
        columns.push_back({name, rows.front()[name].isText() ? Table::Align::Left : Table::Align::Right});
    }
    Table list(std::move(columns));
    for (const Json& row : rows) {
        std::vector<std::string> cells;
        for (const char* name : table.listed) {
            cells.push_back(shown(row[name]));
        }
        list.add(std::move(cells));
    }
    list.print(std::cout, Session::outputWidth());
}

int list(Session& session, const std::vector<const TransferTable*>& wanted)
{
    // A copy, so that transfers show while another program has locked their file.
    session.readStore(transferFileName, ReadableStore::Copy::Always);
    StoreFile file(transferFileName);
    int code = 0;
    for (const TransferTable* const table : wanted) {
        if (!file.hasTable(table->name)) {
            if (!session.json()) {
                std::cout << table->name << ": no table\n";
            }
            continue;
        }
        const std::vector<Json> rows = table->read(file);
        const std::int64_t lost = file.countRows(table->name) - static_cast<std::int64_t>(rows.size());
        session.stopIfFailed("read the transfers");
        showRows(session, *table, rows);
        if (lost > 0) {
            session.reporter().error("cannot list all of " + std::string(table->name) + ": the library gives no " +
                                     counted(lost, "row", "rows") + " with such a type or id");
            code = failed;
        }
    }
    return code;
}

/// Shows the row that the expected one has become. A table that gives the ids itself has given one above `lastId`.
int showAdded(Session& session, const TransferTable& table, Json expected, std::optional<int> lastId = {})
{
    session.stopModules(); // what was posted is written then
    session.stopIfFailed("add the transfer");
    StoreFile file(transferFileName);
    for (const Json& row : table.read(file)) {
        if (lastId && row["id"].number() > *lastId) {
            expected["id"] = row["id"];
        }
        if (row == expected) {
            showRows(session, table, {row});
            return 0;
        }
    }
    throw Failure("cannot find the new transfer in " + std::string(table.name));
}

std::int64_t now()
{
    return GlobalParamWrapper::GetInstance()->GetServerTime();
}

int addUpload(Session& session, const AddOptions& options)
{
    TransmissionDBModule& transfers = openForWriting(session);
    StoreFile file(transferFileName);
    const auto task = std::make_shared<UploadTaskProperty>(UploadTaskProperty{});
    task->id = options.id != 0 ? options.id : freeUploadIds(file, 1);
    task->fileName = options.name;
    task->fileId = options.fileId;
    task->totalLength = options.size;
    task->localPath = options.localPath;
    task->taskStatus = options.status;
    task->startTime = std::to_string(now());
    task->serverPath = options.serverPath;
    transfers.InsertUploadTask(task);
    return showAdded(session, uploadTable, toJson(*task));
}

int addDownload(Session& session, const AddOptions& options)
{
    TransmissionDBModule& transfers = openForWriting(session);
    StoreFile file(transferFileName);
    const int lastId = highestId(file, downloadTable);
    const auto task = std::make_shared<DownloadTaskProperty>();
    task->SetFileNameU8(options.name);
    task->fileId = options.fileId;
    task->totalLength = options.size;
    task->SetLocalPathU8(options.localPath);
    task->SetRelativePathU8(options.relativePath);
    task->taskType = options.type;
    transfers.InsertDownloadTask(task);
    return showAdded(session, downloadTable, toJson(*task), lastId);
}

int addCompleted(Session& session, const AddOptions& options)
{
    TransmissionDBModule& transfers = openForWriting(session);
    StoreFile file(transferFileName);
    const int lastId = highestId(file, completedTable);
    const auto task = std::make_shared<CompletedTaskProperty>();
    task->SetFileNameU8(options.name);
    task->fileId = options.fileId;
    task->totalLength = options.size;
    task->SetLocalPathU8(options.localPath);
    task->pranteID = options.parentId;
    task->taskType = options.type;
    task->endTime = now();
    transfers.InsertCompletedTask(task);
    return showAdded(session, completedTable, toJson(*task), lastId);
}

/// The library has no operation that adds such a row, and a client's own statement is the way.
std::string insertStatement(const TransferTable& table, const Json& row)
{
    std::string names;
    std::string values;
    for (const auto& [name, value] : row.members()) {
        const char* const separator = names.empty() ? "" : ", ";
        names += separator + name;
        values += separator + (value.isText() ? inQuotes(shown(value), '\'') : shown(value));
    }
    return "INSERT INTO " + std::string(table.name) + '(' + names + ") VALUES(" + values + ')';
}

int addTask(Session& session, const AddOptions& options)
{
    TransmissionDBModule& transfers = openForWriting(session);
    TransDbConnThread::GetInstance()->CreateTransferTaskTable();
    DbTransferTask task{};
    task.UniqueId = platform::toWide(options.uniqueId);
    task.FileId = platform::toWide(options.fileId);
    task.FileName = platform::toWide(options.name);
    task.StartTime = now();
    task.TotalSize = options.size;
    task.TaskStatus = options.status;
    task.ModuleType = options.module;
    task.TransferType = options.type;
    task.LocalFilePath = platform::toWide(options.localPath);
    task.ParentId = platform::toWide(options.parentId);
    const Json row = toJson(task);
    transfers.ExecuteSQL(insertStatement(taskTable, row));
    return showAdded(session, taskTable, row);
}

void showSimulation(const Session& session, const TransferSimulation& done, const SimulateOptions& options,
                    const std::vector<std::string>& wrong)
{
    const double postsPerSecond = static_cast<double>(done.posts()) / std::max(done.seconds(), 1e-6);
    if (session.json()) {
        std::cout << toLine({{"transfers", options.transfers},
                             {"threads", options.threads},
                             {"uploads", done.uploads()},
                             {"downloads", done.downloads()},
                             {"posts", done.posts()},
                             {"postsPerSecond", std::llround(postsPerSecond)},
                             {"seconds",
                              {{"posting", toMilliseconds(done.secondsPosting())},
                               {"total", toMilliseconds(done.seconds())}}},
                             {"wrong", wrong}})
                  << '\n';
        return;
    }
    std::cout << "Drove " << counted(options.transfers, "transfer", "transfers") << " with "
              << counted(options.threads, "thread", "threads") << '\n';
    Table table({{"Simulation"}, {"", Table::Align::Right}});
    table.add({"uploads", grouped(done.uploads())});
    table.add({"downloads", grouped(done.downloads())});
    table.add({"rows that are wrong", grouped(static_cast<std::int64_t>(wrong.size()))});
    table.add({"posts", grouped(done.posts())});
    table.add({"seconds until all was posted", twoDecimals(done.secondsPosting())});
    table.add({"seconds until all was written", twoDecimals(done.seconds())});
    table.add({"posts written in a second", grouped(std::llround(postsPerSecond))});
    table.print(std::cout, Session::outputWidth());
}

int simulate(Session& session, const SimulateOptions& options)
{
    TransferSimulation simulation(session, openForWriting(session), options.transfers, options.threads);
    simulation.run();
    const std::vector<std::string> wrong = simulation.wrongRows();
    showSimulation(session, simulation, options, wrong);
    if (wrong.empty()) {
        return 0;
    }
    constexpr std::size_t told = 10;
    std::string text =
        "cannot vouch for the transfers: " + counted(static_cast<std::int64_t>(wrong.size()), "row is", "rows are") +
        " not as they should be";
    for (std::size_t i = 0; i < std::min(told, wrong.size()); ++i) {
        text += (i == 0 ? ": " : ", ") + wrong[i];
    }
    if (wrong.size() > told) {
        text += ", and more; --json names all of them";
    }
    throw Failure(text);
}

/// All tables where none is wanted by itself.
struct ListOptions {
    bool uploads = false;
    bool downloads = false;
    bool completed = false;
    bool tasks = false;
};

int listWanted(Session& session, const ListOptions& options)
{
    const std::array wanted{options.uploads, options.downloads, options.completed, options.tasks};
    const bool all = std::find(wanted.begin(), wanted.end(), true) == wanted.end();
    std::vector<const TransferTable*> some;
    for (std::size_t i = 0; i < tables.size(); ++i) {
        if (all || wanted[i]) {
            some.push_back(tables[i]);
        }
    }
    return list(session, some);
}

Command listCommand()
{
    return {
        .name = "list",
        .summary = "List what is in the store, or some of it",
        .arguments = {argument<&ListOptions::uploads>("--uploads", "Uploads that are not finished"),
                      argument<&ListOptions::downloads>("--downloads", "Downloads that are not finished"),
                      argument<&ListOptions::completed>("--completed", "Finished transfers"),
                      argument<&ListOptions::tasks>("--tasks", "The newer and wider records of either direction")},
        .details = "With --json each line is a row with its table and its stored columns.",
        .example = "dbservice transfers list --uploads",
        .run = listWanted,
    };
}

Command addCommand()
{
    const Arguments common{text<&AddOptions::name>("--name", "The file's name", {.required = true}),
                           text<&AddOptions::fileId>("--file-id", "Its id in the cloud"),
                           text<&AddOptions::localPath>("--path", "Its path on this computer"),
                           argument<&AddOptions::size>("--size", "Its size in bytes")};
    const Argument type = argument<&AddOptions::type>("--type", "The kind of transfer");
    const Argument status = argument<&AddOptions::status>("--status", "Its state");
    const Argument parent = text<&AddOptions::parentId>("--parent", "The id of its folder in the cloud");
    const char* const details =
        "Types and states are numbers of the client's. The time is now, in seconds since 1970 UTC.";
    return {
        .name = "add",
        .summary = "Add one transfer, and show it as it is stored",
        .example = "dbservice transfers add upload --name beach.jpg --size 2048000",
        .parts =
            {
                {
                    .name = "upload",
                    .summary = "An upload that is not finished",
                    .arguments = {common,
                                  argument<&AddOptions::id>(
                                      "--id", "The row's id; without it the next one that is free", {.positive = true}),
                                  text<&AddOptions::serverPath>("--server-path", "Its path in the cloud"), status},
                    .details = details,
                    .example = "dbservice transfers add upload --name beach.jpg --size 2048000",
                    .run = addUpload,
                },
                {
                    .name = "download",
                    .summary = "A download that is not finished",
                    .arguments = {common,
                                  text<&AddOptions::relativePath>("--relative-path",
                                                                  "Its path below the folder that is downloaded"),
                                  type},
                    .details = details,
                    .example = "dbservice transfers add download --name beach.jpg --path /home/me/beach.jpg",
                    .run = addDownload,
                },
                {
                    .name = "completed",
                    .summary = "A finished transfer",
                    .arguments = {common, parent, type},
                    .details = details,
                    .example = "dbservice transfers add completed --name beach.jpg --type 1",
                    .run = addCompleted,
                },
                {
                    .name = "task",
                    .summary = "A newer and wider record, by a statement as a client would run it",
                    .arguments = {common, text<&AddOptions::uniqueId>("--unique-id", "Its key", {.required = true}),
                                  parent, type, status,
                                  argument<&AddOptions::module>("--module",
                                                                "Whose transfer it is, a number of the client's")},
                    .details = details,
                    .example = "dbservice transfers add task --name beach.jpg --unique-id 7",
                    .run = addTask,
                },
            },
    };
}

Command simulateCommand()
{
    return {
        .name = "simulate",
        .summary = "Drive made-up transfers through the store, and prove that none is lost",
        .arguments = {argument<&SimulateOptions::transfers>("N", "How many",
                                                            {.required = true, .range = Range{1, 1'000'000}}),
                      argument<&SimulateOptions::threads>("--threads", "How many threads post them",
                                                          {.showsDefault = true, .range = Range{1, 64}})},
        .details =
            "Half of them are uploads, which stay in their table, at their end; the others are downloads, which "
            "become\n"
            "finished transfers. The rows are made up and stay in the store, so take one that is there for that.\n"
            "The threads post to the module of the transfer store. It is stopped then, and every row is looked for.\n"
            "What one thread posts is written in its order. Inserts of downloads and of finished transfers are not "
            "posted:\n"
            "the thread that makes them writes them itself, ahead of what waits. The posts of a second are counted "
            "until\n"
            "all is written, in a transaction each.",
        .example = "dbservice transfers simulate 1000 --threads 8",
        .run = simulate,
    };
}

} // namespace

Command transfersCommand()
{
    return {
        .name = "transfers",
        .group = group::otherStores,
        .summary = "Show and change the transfers, and put their store under load",
        .example = "dbservice transfers list",
        .parts = {listCommand(), addCommand(), simulateCommand()},
    };
}

} // namespace dbservice
