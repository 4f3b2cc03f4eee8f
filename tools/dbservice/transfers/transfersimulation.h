#pragma once

#include "databaseservice/transmissiondbmodule.h"
#include "stores/storefile.h"

#include <atomic>
#include <cstdint>
#include <future>
#include <string>
#include <unordered_map>
#include <vector>

namespace dbservice {

class Session;

/// Makes up transfers, half of them uploads and half downloads, and drives them through the transfer store's module
/// from several threads, as a client does; then stops the module and looks whether everything is there.
///
/// An upload is posted, and behind it a statement that brings its offset to its end: what one thread posts is done in
/// its order, so the statement finds the row. Between threads the order is that in which they post.
/// A download is inserted, finished and removed. Its row and the one of the finished transfer are written on the
/// posting thread, ahead of what is posted and not yet done; only the removal is posted.
class TransferSimulation {
public:
    using Module = DatabaseService::TransmissionDB::TransmissionDBModule;

    /// The module has made its tables. Throws a `Failure` when there are no ids left for the uploads.
    TransferSimulation(Session& session, Module& module, int transfers, int threads);

    /// Returns when the module has stopped, so that all that was posted is written.
    void run();
    /// A text for each row that is not as it should be.
    std::vector<std::string> wrongRows() const;

    int uploads() const { return m_uploads; }
    int downloads() const { return m_downloads; }
    std::int64_t posts() const { return m_posts; }
    double secondsPosting() const { return m_secondsPosting; } ///< until the threads were done
    double seconds() const { return m_seconds; }               ///< until the module had stopped

private:
    using UploadTask = DatabaseService::TransmissionDB::UploadTaskProperty;
    using DownloadTask = DatabaseService::TransmissionDB::DownloadTaskProperty;
    using CompletedTask = DatabaseService::TransmissionDB::CompletedTaskProperty;

    UploadTask upload(int number) const;
    DownloadTask download(int number) const;
    CompletedTask completed(int number) const;
    std::string fileId(const char* kind, int number) const;

    void work(int worker);
    void postUpload(int number);
    void finishDownload(int number, int id);
    /// Waits, and shows meanwhile how many rows are written.
    void await(std::future<void>& end);

    void lookAtUploads(std::vector<std::string>& wrong) const;
    void lookAtDownloads(std::vector<std::string>& wrong) const;

    Session& m_session;
    Module& m_module;
    StoreFile m_file;
    const int m_uploads;
    const int m_downloads;
    const int m_threads;
    const std::string m_run;   ///< tells the file ids of this run from those of all others
    const int m_firstUpload;   ///< an id
    const int m_lastCompleted; ///< the highest id before the run
    std::atomic<std::int64_t> m_posts{0};
    double m_secondsPosting = 0;
    double m_seconds = 0;
};

} // namespace dbservice
