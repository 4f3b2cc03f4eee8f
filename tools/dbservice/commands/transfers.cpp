#include "clientservices/globalparamwrapper.h"
#include "commands/commands.h"
#include "databaseservice/transdbconnthread.h"
#include "databaseservice/transmissiondbmodule.h"
#include "platform/text.h"
#include "stores/session.h"
#include "stores/storefile.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/table.h"
#include "textarguments.h"
#include "transfers/transfersimulation.h"
#include "transfers/transfertables.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <memory>
#include <optional>

namespace dbservice {

using nlohmann::ordered_json;
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
    requireWritable(transferFileName);
    auto& transfers = session.module<TransmissionDBModule>();
    transfers.OnUserLogin();
    session.stopIfFailed("lay down the transfer store");
    return transfers;
}

std::string shown(const ordered_json& value)
{
    return value.is_string() ? value.get<std::string>() : value.dump();
}

void showRows(const Session& session, const TransferTable& table, const std::vector<ordered_json>& rows)
{
    if (session.json()) {
        for (const ordered_json& row : rows) {
            ordered_json line{{"table", table.name}};
            line.update(row);
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
        columns.push_back({name, rows.front()[name].is_string() ? Table::Align::Left : Table::Align::Right});
    }
    Table list(std::move(columns));
    for (const ordered_json& row : rows) {
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
    // A copy, since the library waits without end for a file that another program has locked.
    session.readStore(transferFileName, ReadableStore::Copy::Always);
    StoreFile file(transferFileName);
    const std::vector<std::string> present = file.tables();
    int code = 0;
    for (const TransferTable* const table : wanted) {
        if (std::find(present.begin(), present.end(), table->name) == present.end()) {
            if (!session.json()) {
                std::cout << table->name << ": no table\n";
            }
            continue;
        }
        const std::vector<ordered_json> rows = table->read(file);
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
int showAdded(Session& session, const TransferTable& table, ordered_json expected, std::optional<int> lastId = {})
{
    session.stopModules(); // what was posted is written then
    session.stopIfFailed("add the transfer");
    StoreFile file(transferFileName);
    for (const ordered_json& row : table.read(file)) {
        if (lastId && row["id"] > *lastId) {
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
std::string insertStatement(const TransferTable& table, const ordered_json& row)
{
    std::string names;
    std::string values;
    for (const auto& [name, value] : row.items()) {
        const char* const separator = names.empty() ? "" : ", ";
        names += separator + name;
        values += separator + (value.is_string() ? inQuotes(shown(value), '\'') : shown(value));
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
    const ordered_json row = toJson(task);
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

void addList(CLI::App& command, Command& chosen)
{
    const auto wanted = std::make_shared<std::array<bool, tables.size()>>();
    CLI::App* const listing = command.add_subcommand("list", "List what is in the store, or some of it");
    constexpr std::array flags{"--uploads", "--downloads", "--completed", "--tasks"};
    constexpr std::array descriptions{"Uploads that are not finished", "Downloads that are not finished",
                                      "Finished transfers", "The newer and wider records of either direction"};
    for (std::size_t i = 0; i < tables.size(); ++i) {
        listing->add_flag(flags[i], (*wanted)[i], descriptions[i]);
    }
    listing->footer("With --json each line is a row with its table and its stored columns.");
    listing->callback([&chosen, wanted] {
        const bool all = std::find(wanted->begin(), wanted->end(), true) == wanted->end();
        std::vector<const TransferTable*> some;
        for (std::size_t i = 0; i < tables.size(); ++i) {
            if (all || (*wanted)[i]) {
                some.push_back(tables[i]);
            }
        }
        chosen = [some](Session& session) { return list(session, some); };
    });
}

void addAdd(CLI::App& command, Command& chosen)
{
    const auto options = std::make_shared<AddOptions>();
    CLI::App* const adding = command.add_subcommand("add", "Add one transfer, and show it as it is stored");
    adding->require_subcommand(1);
    const auto add = [&](const char* name, const char* description, int (*run)(Session&, const AddOptions&)) {
        CLI::App* const kind = adding->add_subcommand(name, description);
        addText(*kind, "--name", options->name, "The file's name")->required();
        addText(*kind, "--file-id", options->fileId, "Its id in the cloud");
        addText(*kind, "--path", options->localPath, "Its path on this computer");
        kind->add_option("--size", options->size, "Its size in bytes");
        kind->footer("Types and states are numbers of the client's. The time is now, in seconds since 1970 UTC.");
        kind->callback(
            [&chosen, options, run] { chosen = [options, run](Session& session) { return run(session, *options); }; });
        return kind;
    };
    const auto addType = [&](CLI::App* kind) { kind->add_option("--type", options->type, "The kind of transfer"); };
    const auto addStatus = [&](CLI::App* kind) { kind->add_option("--status", options->status, "Its state"); };
    const auto addParent = [&](CLI::App* kind) {
        addText(*kind, "--parent", options->parentId, "The id of its folder in the cloud");
    };

    CLI::App* const upload = add("upload", "An upload that is not finished", addUpload);
    upload->add_option("--id", options->id, "The row's id; without it the next one that is free")
        ->check(CLI::PositiveNumber);
    addText(*upload, "--server-path", options->serverPath, "Its path in the cloud");
    addStatus(upload);

    CLI::App* const download = add("download", "A download that is not finished", addDownload);
    addText(*download, "--relative-path", options->relativePath, "Its path below the folder that is downloaded");
    addType(download);

    CLI::App* const completed = add("completed", "A finished transfer", addCompleted);
    addParent(completed);
    addType(completed);

    CLI::App* const task = add("task", "A newer and wider record, by a statement as a client would run it", addTask);
    addText(*task, "--unique-id", options->uniqueId, "Its key")->required();
    addParent(task);
    addType(task);
    addStatus(task);
    task->add_option("--module", options->module, "Whose transfer it is, a number of the client's");
}

void addSimulate(CLI::App& command, Command& chosen)
{
    const auto options = std::make_shared<SimulateOptions>();
    CLI::App* const simulating =
        command.add_subcommand("simulate", "Drive made-up transfers through the store, and prove that none is lost");
    simulating->add_option("N", options->transfers, "How many")->required()->check(CLI::Range(1, 1'000'000));
    simulating->add_option("--threads", options->threads, "How many threads post them")
        ->check(CLI::Range(1, 64))
        ->capture_default_str();
    simulating->footer(
        "Half of them are uploads, which stay in their table, at their end; the others are downloads, which become\n"
        "finished transfers. The rows are made up and stay in the store, so take one that is there for that.\n"
        "The threads post to the module of the transfer store. It is stopped then, and every row is looked for.\n"
        "What one thread posts is written in its order. Inserts of downloads and of finished transfers are not "
        "posted:\n"
        "the thread that makes them writes them itself, ahead of what waits. The posts of a second are counted until\n"
        "all is written, in a transaction each.");
    simulating->callback(
        [&chosen, options] { chosen = [options](Session& session) { return simulate(session, *options); }; });
}

} // namespace

void addTransfers(CLI::App& app, Command& chosen)
{
    CLI::App* const command =
        app.add_subcommand("transfers", "Show and change the transfers, and put their store under load");
    command->require_subcommand(1);
    addList(*command, chosen);
    addAdd(*command, chosen);
    addSimulate(*command, chosen);
}

} // namespace dbservice
