#include "databaseservice/calltrace.h"

#include "databaseservice/engine/calltimer.h"
#include "platform/neverdestroyed.h"
#include "platform/text.h"

#include <atomic>
#include <mutex>
#include <utility>

namespace DatabaseService {

namespace {

using Clock = std::chrono::steady_clock;

struct Callback {
    std::atomic<bool> isSet = false;
    std::mutex mutex;
    std::shared_ptr<const CallTraceCallback> callback;
};

Callback& current()
{
    static auto& instance = platform::neverDestroyed(new Callback);
    return instance;
}

thread_local std::chrono::nanoseconds waitedOnThread{0};

} // namespace

struct CallTimer::Trace {
    std::shared_ptr<const CallTraceCallback> callback;
    std::string store;
    std::string statement;
    CallTrace times;
    Stage stage = &CallTrace::opening;
    Clock::time_point stageBegan;
    std::chrono::nanoseconds waitedBefore{};
};

CallTimer::CallTimer(std::wstring_view store, std::string_view statement)
{
    if (current().isSet.load(std::memory_order_relaxed)) {
        begin(statement);
        m_trace->store = platform::toUtf8(store);
    }
}

CallTimer::CallTimer(const std::string& store, std::string_view statement)
{
    if (current().isSet.load(std::memory_order_relaxed)) {
        begin(statement);
        m_trace->store = store;
    }
}

CallTimer::~CallTimer()
{
    if (m_trace == nullptr || m_trace->callback == nullptr) {
        return;
    }
    next(nullptr);
    CallTrace& call = m_trace->times;
    call.store = m_trace->store;
    call.statement = m_trace->statement;
    call.rowsIn = m_rowsIn;
    call.rowsOut = m_rowsOut;
    call.succeeded = m_succeeded;
    try {
        (*m_trace->callback)(call);
    } catch (...) { // a trace may not change what a call does
    }
}

void CallTimer::waited(std::chrono::nanoseconds time)
{
    waitedOnThread += time;
}

void CallTimer::begin(std::string_view statement)
{
    m_trace = std::make_unique<Trace>();
    m_trace->statement = statement;
    m_trace->waitedBefore = waitedOnThread;
    Callback& known = current();
    const std::lock_guard lock(known.mutex);
    m_trace->callback = known.callback;
    m_trace->times.start = m_trace->stageBegan = Clock::now();
}

void CallTimer::next(Stage stage)
{
    if (m_trace == nullptr) {
        return;
    }
    const Clock::time_point now = Clock::now();
    const std::chrono::nanoseconds waited = waitedOnThread - std::exchange(m_trace->waitedBefore, waitedOnThread);
    const std::chrono::nanoseconds passed = now - std::exchange(m_trace->stageBegan, now);
    if (const Stage ended = std::exchange(m_trace->stage, stage); ended != nullptr) {
        m_trace->times.waiting += waited;
        m_trace->times.*ended += passed - waited;
    }
}

void SetCallTrace(CallTraceCallback callback)
{
    Callback& known = current();
    const std::lock_guard lock(known.mutex);
    known.isSet = static_cast<bool>(callback);
    known.callback = callback ? std::make_shared<const CallTraceCallback>(std::move(callback)) : nullptr;
}

} // namespace DatabaseService
