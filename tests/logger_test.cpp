#include "clientservices/cloudlogger.h"
#include "clientservices/globalparamwrapper.h"
#include "clientservices/korvwritelog.h"
#include "clientservices/logsinks.h"
#include "platform/paths.h"

#include "support/testfolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <functional>
#include <regex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Logger::CaptureSink;
using Logger::CloudLogger;
using Logger::LogEntry;
using Logger::LogSink;

/// A sink in the log for as long as the object lives.
template <class Sink> class Attached {
public:
    explicit Attached(std::shared_ptr<Sink> sink) : m_sink(std::move(sink))
    {
        CloudLogger::GetInstance()->AddSink(m_sink);
    }

    Attached(const Attached&) = delete;
    Attached& operator=(const Attached&) = delete;
    ~Attached() { CloudLogger::GetInstance()->RemoveSink(m_sink); }

    Sink* operator->() const { return m_sink.get(); }

private:
    std::shared_ptr<Sink> m_sink;
};

Attached<CaptureSink> capture()
{
    return Attached(std::make_shared<CaptureSink>());
}

class FunctionSink : public LogSink {
public:
    explicit FunctionSink(std::function<void(const LogEntry&)> function) : m_function(std::move(function)) { }

    void Write(const LogEntry& entry) override { m_function(entry); }

private:
    std::function<void(const LogEntry&)> m_function;
};

Attached<FunctionSink> attach(std::function<void(const LogEntry&)> function)
{
    return Attached(std::make_shared<FunctionSink>(std::move(function)));
}

void log(const std::string& message)
{
    CloudLogger::GetInstance()->Output(0, 2, 1, "f", message, true);
}

std::vector<std::string> messages(const std::vector<LogEntry>& entries)
{
    std::vector<std::string> result;
    for (const LogEntry& entry : entries) {
        result.push_back(entry.message);
    }
    return result;
}

std::vector<std::string> linesOf(const std::filesystem::path& file)
{
    std::ifstream stream(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST(CloudLogger, BothFormsCarryEachField)
{
    const auto sink = capture();
    CloudLogger::GetInstance()->Output(7, 5, 123, "Class::Function", std::string("narrow \xC3\xA4"), true);
    CloudLogger::GetInstance()->Output(8, 5, 124, nullptr, std::wstring(L"wide \u00E4 \u5047"), false);

    const std::vector<LogEntry> entries = sink->Entries();
    ASSERT_EQ(entries.size(), 2);
    EXPECT_EQ(entries[0].module, 7);
    EXPECT_EQ(entries[0].severity, 5);
    EXPECT_EQ(entries[0].line, 123);
    EXPECT_EQ(entries[0].function, "Class::Function");
    EXPECT_EQ(entries[0].message, "narrow \xC3\xA4");
    EXPECT_TRUE(entries[0].IsFailure());
    EXPECT_EQ(entries[0].tag + entries[0].file, "");
    EXPECT_EQ(entries[1].module, 8);
    EXPECT_EQ(entries[1].line, 124);
    EXPECT_EQ(entries[1].function, "");
    EXPECT_EQ(entries[1].message, "wide \xC3\xA4 \xE5\x81\x87");
    EXPECT_FALSE(entries[1].IsFailure());
}

TEST(KorvWriteLog, CarriesEachFieldAndFormats)
{
    const std::string longText(5000, 'x');
    const auto sink = capture();
    CommonAbility::KorvWriteLog(31, 0x40001, "tag", 77, "file", "function", "%s[%d] %lld", "text", -1, 1LL << 40);
    CommonAbility::KorvWriteLog(1, 2, nullptr, 3, nullptr, nullptr, nullptr);
    CommonAbility::KorvWriteLog(1, 2, "", 3, "", "", "%ls", L"\u5047"); // not to be had in the "C" locale
    // Around the end of whatever buffer there is.
    for (const std::size_t length : {std::size_t{510}, std::size_t{511}, std::size_t{512}, longText.size()}) {
        CommonAbility::KorvWriteLog(1, 2, "", 3, "", "", "%s", longText.substr(0, length).c_str());
    }

    const std::vector<LogEntry> entries = sink->Entries();
    ASSERT_EQ(entries.size(), 7);
    EXPECT_EQ(entries[0].module, 31);
    EXPECT_EQ(entries[0].severity, 0x40001);
    EXPECT_EQ(entries[0].tag, "tag");
    EXPECT_EQ(entries[0].line, 77);
    EXPECT_EQ(entries[0].file, "file");
    EXPECT_EQ(entries[0].function, "function");
    EXPECT_EQ(entries[0].message, "text[-1] 1099511627776");
    EXPECT_FALSE(entries[0].flag);
    EXPECT_EQ(entries[1].tag + entries[1].file + entries[1].function + entries[1].message, "");
    // A printf that takes it all the same leaves the character out.
    EXPECT_TRUE(entries[2].message == "%ls" || entries[2].message.empty()) << entries[2].message;
    EXPECT_EQ(entries[3].message, longText.substr(0, 510));
    EXPECT_EQ(entries[4].message, longText.substr(0, 511));
    EXPECT_EQ(entries[5].message, longText.substr(0, 512));
    EXPECT_EQ(entries[6].message, longText);
}

TEST(CloudLogger, WritesToTheSinksThatAreThere)
{
    const auto first = std::make_shared<CaptureSink>();
    const auto second = std::make_shared<CaptureSink>();
    CloudLogger& logger = *CloudLogger::GetInstance();
    log("nobody listens");
    logger.AddSink(nullptr);
    logger.AddSink(first);
    logger.AddSink(first);
    log("one");
    logger.AddSink(second);
    log("two");
    logger.RemoveSink(first);
    log("three");
    logger.RemoveSink(first);
    logger.RemoveSink(second);
    log("nobody listens any more");

    EXPECT_EQ(messages(first->Entries()), (std::vector<std::string>{"one", "two"}));
    EXPECT_EQ(messages(second->Entries()), (std::vector<std::string>{"two", "three"}));
}

TEST(CloudLogger, DropsWhatASinkThrows)
{
    const auto throwing = attach([](const LogEntry&) { throw std::runtime_error("disk full"); });
    const auto sink = capture();
    EXPECT_NO_THROW(log("one"));
    EXPECT_NO_THROW(CommonAbility::KorvWriteLog(0, 0, "", 0, "", "", "two"));
    EXPECT_EQ(messages(sink->Entries()), (std::vector<std::string>{"one", "two"}));
}

TEST(CloudLogger, DropsWhatASinkLogsWhileItWrites)
{
    const auto nesting = attach([](const LogEntry& entry) {
        log("from the sink");
        CommonAbility::KorvWriteLog(0, 0, "", 0, "", "", "from the sink");
        if (entry.message == "one") {
            throw std::runtime_error("and it fails as well");
        }
    });
    const auto sink = capture();
    log("one");
    log("two");
    EXPECT_EQ(messages(sink->Entries()), (std::vector<std::string>{"one", "two"}));
}

// Threads log while sinks come and go: lines arrive one at a time, a sink that stays misses none, and a sink that was
// removed is left in peace.
TEST(CloudLogger, TakesLinesAndSinksFromManyThreads)
{
    constexpr int threadCount = 4;
    constexpr int linesPerThread = 2000;
    std::atomic<int> inside{0};
    std::atomic<int> overlaps{0};
    std::vector<int> seen(threadCount, 0); // written under the logger's lock only
    int outOfOrder = 0;
    std::atomic<int> afterRemoval{0};
    {
        const auto staying = attach([&](const LogEntry& entry) {
            overlaps += inside++ == 0 ? 0 : 1;
            int& next = seen[static_cast<std::size_t>(entry.module)];
            outOfOrder += entry.line == next && entry.message == std::to_string(next) ? 0 : 1;
            ++next;
            --inside;
        });
        std::vector<std::thread> threads;
        for (int thread = 0; thread < threadCount; ++thread) {
            threads.emplace_back([thread] {
                for (int line = 0; line < linesPerThread; ++line) {
                    if (line % 2 == 0) {
                        CloudLogger::GetInstance()->Output(thread, 2, line, "f", std::to_wstring(line), true);
                    } else {
                        CommonAbility::KorvWriteLog(thread, 2, "", line, "", "", "%d", line);
                    }
                }
            });
        }
        for (int round = 0; round < 200; ++round) {
            std::atomic<bool> removed{false};
            {
                const auto passing = attach([&](const LogEntry&) { afterRemoval += removed ? 1 : 0; });
                std::this_thread::yield();
            }
            removed = true;
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
    EXPECT_EQ(overlaps, 0);
    EXPECT_EQ(outOfOrder, 0);
    EXPECT_EQ(afterRemoval, 0);
    EXPECT_EQ(seen, std::vector<int>(threadCount, linesPerThread));
}

TEST(RotatingFileSink, WritesOnePlainLinePerEntry)
{
    const testsupport::TestFolder folder;
    const std::filesystem::path file = folder.path() / platform::toPath(L"Protokoll \u00E4 \u5047.log");
    {
        const Attached sink(Logger::MakeRotatingFileSink(file, 1'000'000, 1));
        CloudLogger::GetInstance()->Output(0, 5, 42, "Class::Function", std::string("first\nsecond\x1B[2J\r\t{} %d"),
                                           true);
        CommonAbility::KorvWriteLog(31, 1, "unknown", 7, "source", "Other", "printed %d", 5);
        EXPECT_EQ(linesOf(file).size(), 2) << "lines must not wait in a buffer";
    }
    const std::vector<std::string> lines = linesOf(file);
    ASSERT_EQ(lines.size(), 2);
    const std::regex time(R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} )");
    EXPECT_TRUE(std::regex_search(lines[0], time)) << lines[0];
    EXPECT_EQ(lines[0].substr(24), R"([severity 5] module 0 Class::Function:42 first\nsecond\x1b[2J\x0d\x09{} %d)");
    EXPECT_EQ(lines[1].substr(24), "[severity 1] module 31 [unknown] source Other:7 printed 5");
}

TEST(RotatingFileSink, KeepsTheLastFilesWithinTheirSize)
{
    constexpr std::size_t maxBytes = 2000;
    constexpr std::size_t maxFiles = 2;
    const testsupport::TestFolder folder;
    const std::filesystem::path file = folder.path() / "client.log";
    {
        const Attached sink(Logger::MakeRotatingFileSink(file, maxBytes, maxFiles));
        for (int line = 0; line < 200; ++line) {
            log("line " + std::to_string(line));
        }
    }
    std::vector<std::string> kept;
    for (const char* name : {"client.2.log", "client.1.log", "client.log"}) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(std::filesystem::exists(folder.path() / name));
        EXPECT_LE(std::filesystem::file_size(folder.path() / name), maxBytes);
        for (const std::string& line : linesOf(folder.path() / name)) {
            kept.push_back(line.substr(line.rfind(' ') + 1));
        }
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 3);
    // The newest lines without a gap, across the three files.
    ASSERT_GT(kept.size(), 50);
    for (std::size_t place = 0; place < kept.size(); ++place) {
        EXPECT_EQ(kept[place], std::to_string(200 - kept.size() + place));
    }
}

TEST(RotatingFileSink, SaysWhenTheFileCannotBeOpened)
{
    const testsupport::TestFolder folder;
    EXPECT_THROW(Logger::MakeRotatingFileSink(folder.path(), 1000, 1), std::runtime_error);
    EXPECT_THROW(Logger::MakeRotatingFileSink(folder.path() / "client.log", 0, 1), std::runtime_error);
}

TEST(GlobalParamWrapper, HandsOutDefaultsThenWhatWasSet)
{
    GlobalParamWrapper& settings = *GlobalParamWrapper::GetInstance();
    const auto now = [] {
        return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch())
            .count();
    };
    const auto before = now();
    const std::int64_t time = settings.GetServerTime();
    EXPECT_GE(time, before);
    EXPECT_LE(time, now());
    EXPECT_EQ(settings.GetUserDataBaseFolder(), L"");
    EXPECT_EQ(settings.GetUserCachePath(), L"");
    EXPECT_EQ(settings.GetRecyFileAutoDelInterval(), 30);
    EXPECT_FALSE(settings.GetEnableShowLostDiskFile());

    settings.SetUserDataBaseFolder(L"folder");
    settings.SetUserCachePath(L"cache");
    settings.SetServerTime(-5);
    settings.SetRecyFileAutoDelInterval(7);
    settings.SetEnableShowLostDiskFile(true);
    EXPECT_EQ(settings.GetUserDataBaseFolder(), L"folder");
    EXPECT_EQ(settings.GetUserCachePath(), L"cache");
    EXPECT_EQ(settings.GetServerTime(), -5);
    EXPECT_EQ(settings.GetRecyFileAutoDelInterval(), 7);
    EXPECT_TRUE(settings.GetEnableShowLostDiskFile());
}

} // namespace
