#include "transfers/transfersimulation.h"

#include "clientservices/globalparamwrapper.h"
#include "databaseservice/transdbconnthread.h"
#include "stores/session.h"
#include "terminal/displaytext.h"
#include "transfers/transfertables.h"

#include <chrono>
#include <list>
#include <memory>
#include <random>

namespace dbservice {

using DatabaseService::TransmissionDB::TransDbConnThread;

namespace {

constexpr int simulatedType = 0;
constexpr int runningStatus = 1;

std::string randomName()
{
    std::random_device random;
    return std::to_string(random()) + '-' + std::to_string(random());
}

DatabaseService::int64 sizeOf(int number)
{
    return 1000 + DatabaseService::int64{number} * 37;
}

std::string nameOf(int number)
{
    return "photo " + std::to_string(number) + ".jpg";
}

std::string pathOf(int number)
{
    return "/Pictures/" + nameOf(number);
}

} // namespace

TransferSimulation::TransferSimulation(Session& session, Module& module, int transfers, int threads)
    : m_session(session),
      m_module(module),
      m_file(transferFileName),
      m_uploads(transfers - transfers / 2),
      m_downloads(transfers / 2),
      m_threads(threads),
      m_run("simulated-" + randomName()),
      m_firstUpload(freeUploadIds(m_file, m_uploads)),
      m_lastCompleted(highestId(m_file, completedTable))
{
    session.stopIfFailed("look for ids that are free");
}

void TransferSimulation::run()
{
    const auto start = std::chrono::steady_clock::now();
    const auto secondsSince = [](std::chrono::steady_clock::time_point then) {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - then).count();
    };
    std::vector<std::future<void>> workers;
    workers.reserve(static_cast<std::size_t>(m_threads));
    for (int worker = 0; worker < m_threads; ++worker) {
        workers.push_back(std::async(std::launch::async, [this, worker] { work(worker); }));
    }
    for (std::future<void>& worker : workers) {
        await(worker);
    }
    m_secondsPosting = secondsSince(start);
    std::future<void> stopped = std::async(std::launch::async, [this] { m_session.stopModules(); });
    await(stopped);
    m_seconds = secondsSince(start);
    m_session.reporter().endProgress();
}

void TransferSimulation::await(std::future<void>& end)
{
    while (end.wait_for(std::chrono::milliseconds(250)) != std::future_status::ready) {
        const int written = m_file.number(
            "SELECT (SELECT COUNT(*) FROM UploadTaskTable WHERE id >= " + std::to_string(m_firstUpload) +
            ") + (SELECT COUNT(*) FROM CompletedTaskTable WHERE id > " + std::to_string(m_lastCompleted) + ')');
        const int all = m_uploads + m_downloads;
        m_session.reporter().progress(static_cast<double>(written) / all,
                                      grouped(written) + " of " + counted(all, "transfer", "transfers") + " written");
    }
    end.get();
}

void TransferSimulation::work(int worker)
{
    std::list<std::shared_ptr<DownloadTask>> downloads;
    for (int number = worker; number < m_downloads; number += m_threads) {
        downloads.push_back(std::make_shared<DownloadTask>(download(number)));
    }
    m_module.InsertDownloadTask(downloads);
    // Written when that returns, so their ids can be read, together with those of others.
    std::vector<DownloadTask> rows;
    m_module.GetAllDownloadTasks(rows, simulatedType);
    std::unordered_map<std::string, int> ids;
    for (const DownloadTask& row : rows) {
        ids[row.fileId] = row.id;
    }
    for (int number = worker; number < m_uploads; number += m_threads) {
        postUpload(number);
        if (const auto found = ids.find(fileId("download", number)); found != ids.end()) {
            finishDownload(number, found->second);
        }
    }
}

void TransferSimulation::postUpload(int number)
{
    const UploadTask task = upload(number);
    m_module.InsertUploadTask(std::make_shared<UploadTask>(task));
    m_module.ExecuteSQL("UPDATE UploadTaskTable SET uploadOffset = totalLength WHERE id = " + std::to_string(task.id));
    m_posts += 2;
}

void TransferSimulation::finishDownload(int number, int id)
{
    m_module.InsertCompletedTask(std::make_shared<CompletedTask>(completed(number)));
    m_module.DeleteDownloadTask(id);
    ++m_posts;
}

std::vector<std::string> TransferSimulation::wrongRows() const
{
    std::vector<std::string> wrong;
    lookAtUploads(wrong);
    lookAtDownloads(wrong);
    return wrong;
}

void TransferSimulation::lookAtUploads(std::vector<std::string>& wrong) const
{
    std::vector<UploadTask> rows;
    TransDbConnThread::GetInstance()->GetAllUploadTaskProperties(rows);
    std::unordered_map<int, const UploadTask*> byId;
    for (const UploadTask& row : rows) {
        byId[row.id] = &row;
    }
    for (int number = 0; number < m_uploads; ++number) {
        const UploadTask expected = upload(number);
        const auto found = byId.find(expected.id);
        const std::string name = "upload " + std::to_string(expected.id);
        if (found == byId.end() || found->second->fileId != expected.fileId) {
            wrong.push_back(name + " is missing");
        } else if (found->second->uploadOffset != expected.totalLength) {
            wrong.push_back(name + " is not at its end");
        }
    }
}

void TransferSimulation::lookAtDownloads(std::vector<std::string>& wrong) const
{
    std::vector<CompletedTask> completedRows;
    TransDbConnThread::GetInstance()->GetAllCompletedTasks(completedRows, simulatedType, simulatedType);
    std::unordered_map<std::string, int> timesCompleted;
    for (const CompletedTask& row : completedRows) {
        ++timesCompleted[row.fileId];
    }
    std::vector<DownloadTask> downloadRows;
    TransDbConnThread::GetInstance()->GetAllDownloadTasks(downloadRows, simulatedType);
    std::unordered_map<std::string, int> left;
    for (const DownloadTask& row : downloadRows) {
        left[row.fileId] = row.id;
    }
    for (int number = 0; number < m_downloads; ++number) {
        const std::string name = fileId("download", number);
        if (const int times = timesCompleted[name]; times != 1) {
            wrong.push_back(name + (times == 0 ? " is missing" : " is there " + std::to_string(times) + " times") +
                            " among the completed ones");
        }
        if (const auto found = left.find(name); found != left.end()) {
            wrong.push_back("download " + std::to_string(found->second) + " is still there");
        }
    }
}

std::string TransferSimulation::fileId(const char* kind, int number) const
{
    return m_run + '-' + kind + '-' + std::to_string(number);
}

TransferSimulation::UploadTask TransferSimulation::upload(int number) const
{
    UploadTask task{};
    task.id = m_firstUpload + number;
    task.fileName = nameOf(number);
    task.fileId = fileId("upload", number);
    task.totalLength = sizeOf(number);
    task.localPath = pathOf(number);
    task.taskStatus = runningStatus;
    task.startTime = std::to_string(GlobalParamWrapper::GetInstance()->GetServerTime());
    return task;
}

TransferSimulation::DownloadTask TransferSimulation::download(int number) const
{
    DownloadTask task;
    task.taskType = simulatedType;
    task.totalLength = sizeOf(number);
    task.fileId = fileId("download", number);
    task.SetFileNameU8(nameOf(number));
    task.SetLocalPathU8(pathOf(number));
    task.SetRelativePathU8(nameOf(number));
    return task;
}

TransferSimulation::CompletedTask TransferSimulation::completed(int number) const
{
    CompletedTask task;
    task.taskType = simulatedType;
    task.totalLength = sizeOf(number);
    task.endTime = GlobalParamWrapper::GetInstance()->GetServerTime();
    task.fileId = fileId("download", number);
    task.SetFileNameU8(nameOf(number));
    task.SetLocalPathU8(pathOf(number));
    return task;
}

} // namespace dbservice
