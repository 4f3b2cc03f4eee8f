#include "clientservices/logdispatch.h"

#include "platform/neverdestroyed.h"

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace Logger {

namespace {

struct Sinks {
    std::mutex mutex;
    std::vector<std::shared_ptr<LogSink>> all;
};

Sinks& sinks()
{
    static auto& instance = platform::neverDestroyed(new Sinks);
    return instance;
}

constinit thread_local bool isWriting = false;

} // namespace

void LogDispatch::send(const LogEntry& entry) noexcept
{
    if (isWriting) {
        return;
    }
    try {
        Sinks& current = sinks();
        const std::lock_guard lock(current.mutex);
        isWriting = true;
        for (const auto& sink : current.all) {
            try {
                sink->Write(entry);
            } catch (...) { // the other sinks still get the line
            }
        }
    } catch (...) { // no lock, no line
    }
    isWriting = false;
}

void LogDispatch::add(std::shared_ptr<LogSink> sink)
{
    if (!sink) {
        return;
    }
    Sinks& current = sinks();
    const std::lock_guard lock(current.mutex);
    if (std::find(current.all.begin(), current.all.end(), sink) == current.all.end()) {
        current.all.push_back(std::move(sink));
        s_wanted.store(true, std::memory_order_relaxed);
    }
}

void LogDispatch::remove(const std::shared_ptr<LogSink>& sink)
{
    Sinks& current = sinks();
    const std::lock_guard lock(current.mutex);
    std::erase(current.all, sink);
    s_wanted.store(!current.all.empty(), std::memory_order_relaxed);
}

} // namespace Logger
