#include "clientservices/logsinks.h"

#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <utility>

namespace Logger {

namespace {

/// One line without control characters: what the entry's texts hold can neither begin a line of its own nor steer
/// a terminal.
std::string formatLine(const LogEntry& entry)
{
    std::string line = fmt::format("[severity {}] module {} ", entry.severity, entry.module);
    if (!entry.tag.empty()) {
        line += '[' + entry.tag + "] ";
    }
    if (!entry.file.empty()) {
        line += entry.file + ' ';
    }
    line += fmt::format("{}:{} ", entry.function, entry.line);
    line += entry.message;

    std::string plain;
    plain.reserve(line.size());
    for (const char character : line) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '\n') {
            plain += "\\n";
        } else if (byte < 0x20 || byte == 0x7F) {
            plain += fmt::format("\\x{:02x}", byte);
        } else {
            plain += character;
        }
    }
    return plain;
}

/// Gives a line the local time and hands it to one of spdlog's sinks.
class SpdlogSink : public LogSink {
public:
    explicit SpdlogSink(std::unique_ptr<spdlog::sinks::sink> sink) : m_sink(std::move(sink))
    {
        m_sink->set_pattern("%Y-%m-%d %H:%M:%S.%e %v");
    }

    void Write(const LogEntry& entry) override
    {
        const std::string line = formatLine(entry);
        m_sink->log(spdlog::details::log_msg({}, spdlog::level::info, line));
        m_sink->flush(); // what is logged survives a crash of the client
    }

private:
    std::unique_ptr<spdlog::sinks::sink> m_sink;
};

} // namespace

LogSink::~LogSink() = default;

struct CaptureSink::Lines {
    mutable std::mutex mutex;
    std::vector<LogEntry> entries;
};

CaptureSink::CaptureSink() : m_lines(std::make_unique<Lines>()) { }

CaptureSink::~CaptureSink() = default;

void CaptureSink::Write(const LogEntry& entry)
{
    const std::lock_guard lock(m_lines->mutex);
    m_lines->entries.push_back(entry);
}

std::vector<LogEntry> CaptureSink::Entries() const
{
    const std::lock_guard lock(m_lines->mutex);
    return m_lines->entries;
}

void CaptureSink::Clear()
{
    const std::lock_guard lock(m_lines->mutex);
    m_lines->entries.clear();
}

std::shared_ptr<LogSink> MakeRotatingFileSink(const std::filesystem::path& file, std::size_t maxBytes,
                                              std::size_t maxFiles)
{
    try {
        // The path's own text: spdlog is built with wide file names on Windows.
        return std::make_shared<SpdlogSink>(
            std::make_unique<spdlog::sinks::rotating_file_sink_st>(file.native(), maxBytes, maxFiles));
    } catch (const spdlog::spdlog_ex& error) {
        throw std::runtime_error(error.what());
    }
}

std::shared_ptr<LogSink> MakeConsoleSink()
{
    return std::make_shared<SpdlogSink>(std::make_unique<spdlog::sinks::stderr_sink_st>());
}

} // namespace Logger
