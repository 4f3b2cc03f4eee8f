#include "clientservices/korvwritelog.h"

#include "clientservices/logdispatch.h"

#include <array>
#include <cstdarg>
#include <cstdio>

namespace CommonAbility {

namespace {

const char* orEmpty(const char* text)
{
    return text != nullptr ? text : "";
}

std::string formatMessage(const char* format, std::va_list arguments)
{
    std::va_list again;
    va_copy(again, arguments);
    std::array<char, 512> small{};
    const int length = std::vsnprintf(small.data(), small.size(), format, arguments);
    std::string message;
    if (length < 0) {
        message = format;
    } else if (static_cast<std::size_t>(length) < small.size()) {
        message.assign(small.data(), static_cast<std::size_t>(length));
    } else {
        message.resize(static_cast<std::size_t>(length));
        std::vsnprintf(message.data(), message.size() + 1, format, again);
    }
    va_end(again);
    return message;
}

} // namespace

void KorvWriteLog(int channel, int level, const char* tag, int line, const char* file, const char* function,
                  const char* format, ...)
{
    if (!Logger::LogDispatch::wanted()) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, format);
    try {
        Logger::LogEntry entry;
        entry.module = channel;
        entry.severity = level;
        entry.line = line;
        entry.function = orEmpty(function);
        entry.message = formatMessage(orEmpty(format), arguments);
        entry.tag = orEmpty(tag);
        entry.file = orEmpty(file);
        Logger::LogDispatch::send(entry);
    } catch (...) { // out of memory costs the line, not the caller
    }
    va_end(arguments);
}

} // namespace CommonAbility
