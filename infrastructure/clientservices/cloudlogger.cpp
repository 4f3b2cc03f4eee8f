#include "clientservices/cloudlogger.h"

#include "clientservices/logdispatch.h"
#include "platform/neverdestroyed.h"
#include "platform/text.h"

#include <utility>

namespace Logger {

namespace {

const std::string& asUtf8(const std::string& message)
{
    return message;
}

std::string asUtf8(const std::wstring& message)
{
    return platform::toUtf8(message);
}

template <class Message>
void write(int module, int severity, int line, const char* function, const Message& message, bool flag) noexcept
{
    if (!LogDispatch::wanted()) {
        return;
    }
    try {
        LogEntry entry;
        entry.module = module;
        entry.severity = severity;
        entry.line = line;
        entry.function = function != nullptr ? function : "";
        entry.message = asUtf8(message);
        entry.flag = flag;
        LogDispatch::send(entry);
    } catch (...) { // out of memory costs the line, not the caller
    }
}

} // namespace

CloudLogger* CloudLogger::GetInstance()
{
    static auto& instance = platform::neverDestroyed(new CloudLogger);
    return &instance;
}

void CloudLogger::Output(int module, int severity, int line, const char* function, const std::string& message,
                         bool flag)
{
    write(module, severity, line, function, message, flag);
}

void CloudLogger::Output(int module, int severity, int line, const char* function, const std::wstring& message,
                         bool flag)
{
    write(module, severity, line, function, message, flag);
}

void CloudLogger::AddSink(std::shared_ptr<LogSink> sink)
{
    LogDispatch::add(std::move(sink));
}

void CloudLogger::RemoveSink(const std::shared_ptr<LogSink>& sink)
{
    LogDispatch::remove(sink);
}

} // namespace Logger
