#pragma once

#include "databaseservice/calltrace.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <thread>

namespace dbservice {

/// Writes the library's calls, as long as this object lives, into a file that the trace viewers of browsers open: a
/// slice for each call on its thread and, below it, one for each stage. A wait for a lock stands at the front of its
/// call, wherever in the call it was.
///
/// Throws a `Failure` when the file cannot be made. The library's calls come to an end before this object does.
class TraceFile {
public:
    explicit TraceFile(const std::filesystem::path& file);
    TraceFile(const TraceFile&) = delete;
    TraceFile& operator=(const TraceFile&) = delete;
    ~TraceFile();

private:
    void write(const DatabaseService::CallTrace& call);

    const std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
    std::mutex m_mutex;
    std::ofstream m_file;
    std::map<std::thread::id, int> m_threads;
};

} // namespace dbservice
