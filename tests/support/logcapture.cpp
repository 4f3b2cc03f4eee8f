#include "support/logcapture.h"

#include "clientservices/cloudlogger.h"
#include "support/lists.h"

#include <algorithm>

namespace testsupport {

namespace {

std::string describe(const ExpectedLine& line)
{
    return std::to_string(line.severity) + ' ' + line.function + ": " + line.message;
}

// The transfer module's lines, which are no failures, by the numbers of the printf-style log.
bool isOfTransferModule(const Logger::LogEntry& entry)
{
    return entry.severity == 0x40003 && entry.module == 1 && entry.line > 0 && !entry.flag && entry.tag == "unknow" &&
        entry.file == "transmissiondbmodule";
}

std::string describe(const Logger::LogEntry& entry)
{
    std::string text = describe(ExpectedLine{entry.function, entry.message, entry.severity});
    const bool isOdd = entry.module != 0 || entry.line <= 0 || (entry.severity == 5 && !entry.flag);
    if (isOdd && !isOfTransferModule(entry)) {
        text += " (module " + std::to_string(entry.module) + ", line " + std::to_string(entry.line) + ", flag " +
            std::to_string(entry.flag) + (entry.tag.empty() ? "" : ", " + entry.tag + " in " + entry.file) + ')';
    }
    return text;
}

bool matches(const Logger::LogEntry& entry, const ExpectedLine& line)
{
    ExpectedLine wanted = line;
    if (line.message.ends_with('*') && entry.message.starts_with(line.message.substr(0, line.message.size() - 1))) {
        wanted.message = entry.message;
    }
    return describe(entry) == describe(wanted);
}

testing::AssertionResult compare(const std::vector<Logger::LogEntry>& entries, const std::vector<ExpectedLine>& lines)
{
    const auto all = [](const auto& some) {
        return joined(mapped(some, [](const auto& line) { return describe(line); }), "\n  ");
    };
    return testing::AssertionResult(std::ranges::equal(entries, lines, matches))
        << "the log has\n  " << all(entries) << "\nand should have\n  " << all(lines);
}

} // namespace

ExpectedLine engine(const std::string& function, const std::string& message)
{
    return {"DatabaseOperationBase::" + function, message};
}

LogCapture::LogCapture() : m_sink(std::make_shared<Logger::CaptureSink>())
{
    Logger::CloudLogger::GetInstance()->AddSink(m_sink);
}

LogCapture::~LogCapture()
{
    Logger::CloudLogger::GetInstance()->RemoveSink(m_sink);
    EXPECT_TRUE(failuresWere({})) << "at the end of the test";
}

testing::AssertionResult LogCapture::failuresWere(const std::vector<ExpectedLine>& lines)
{
    return compare(takeEntries(true), lines);
}

testing::AssertionResult LogCapture::linesWere(const std::vector<ExpectedLine>& lines)
{
    return compare(takeEntries(false), lines);
}

std::vector<std::string> LogCapture::take()
{
    return mapped(takeEntries(false), [](const Logger::LogEntry& entry) { return describe(entry); });
}

std::vector<Logger::LogEntry> LogCapture::takeEntries(bool failuresOnly)
{
    std::vector<Logger::LogEntry> entries = m_sink->Entries();
    m_sink->Clear();
    if (failuresOnly) {
        std::erase_if(entries,
                      [](const Logger::LogEntry& entry) { return entry.severity < 5 || isOfTransferModule(entry); });
    }
    return entries;
}

} // namespace testsupport
