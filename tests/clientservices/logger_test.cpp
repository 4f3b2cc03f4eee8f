#include "clientservices/cloudlogger.h"
#include "clientservices/globalparamwrapper.h"
#include "clientservices/korvwritelog.h"
#include "clientservices/logsinks.h"
#include "databaseservice/korvlog.h"
#include "platform/paths.h"
#include "platform/scopeexit.h"
#include "support/filebytes.h"
#include "support/runonthreads.h"
#include "support/testfolder.h"

#include <atomic>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace {

using CommonAbility::KorvWriteLog;
using Logger::CloudLogger;
using Logger::LogEntry;
using Lines = std::vector<std::string>;

using DatabaseService::formatFits;
static_assert(formatFits<>("100 %%") && formatFits<const char*, int>("%s[%d]") && formatFits<unsigned>("%%%u"));
static_assert(!formatFits<>("%d") && !formatFits<int>("") && !formatFits<int>("%u") && !formatFits<unsigned>("%d%u"));
static_assert(!formatFits<int>("%") && !formatFits<long>("%d") && !formatFits<const char*, int>("%d%s"));

CloudLogger& logger()
{
    return *CloudLogger::GetInstance();
}

void log(const std::string& message)
{
    logger().Output(0, 2, 1, "f", message, true);
}

using Function = std::function<void(const LogEntry&)>;

struct FunctionSink : Logger::LogSink {
    explicit FunctionSink(Function function) : m_function(std::move(function)) { }
    void Write(const LogEntry& entry) override { m_function(entry); }

    const Function m_function;
};

/// The sink is in the log for as long as what this returns lives.
auto attached(std::shared_ptr<Logger::LogSink> sink)
{
    logger().AddSink(sink);
    return platform::ScopeExit([sink] { logger().RemoveSink(sink); });
}

auto attached(const Function& function)
{
    return attached(std::make_shared<FunctionSink>(function));
}

std::string fields(const LogEntry& entry)
{
    std::ostringstream text;
    text << entry.module << ' ' << entry.severity << ' ' << entry.line << " function=" << entry.function
         << " message=" << entry.message << " tag=" << entry.tag << " file=" << entry.file << " flag=" << entry.flag
         << " failure=" << entry.IsFailure();
    return text.str();
}

TEST(CloudLogger, BothFormsCarryEachField)
{
    Lines lines;
    const auto sink = attached([&](const LogEntry& entry) { lines.push_back(fields(entry)); });
    logger().Output(7, 5, 123, "Class::Function", std::string("narrow \xC3\xA4"), true);
    logger().Output(8, 2, 124, nullptr, std::wstring(L"wide \u00E4 \u5047"), false);
    EXPECT_EQ(lines,
              (Lines{"7 5 123 function=Class::Function message=narrow \xC3\xA4 tag= file= flag=1 failure=1",
                     "8 2 124 function= message=wide \xC3\xA4 \xE5\x81\x87 tag= file= flag=0 failure=0"}));
}

TEST(KorvWriteLog, CarriesEachFieldAndFormats)
{
    LogEntry last;
    const auto sink = attached([&](const LogEntry& entry) { last = entry; });
    KorvWriteLog(31, 0x40001, "tag", 77, "file", "function", "%s[%d] %lld", "text", -1, 1LL << 40);
    EXPECT_EQ(fields(last),
              "31 262145 77 function=function message=text[-1] 1099511627776 tag=tag file=file flag=0 failure=0");
    KorvWriteLog(1, 2, nullptr, 3, nullptr, nullptr, nullptr);
    EXPECT_EQ(fields(last), "1 2 3 function= message= tag= file= flag=0 failure=0");
    for (const std::size_t length : {510U, 511U, 512U, 5000U}) { // around the end of whatever buffer there is
        const std::string text(length, 'x');
        KorvWriteLog(1, 2, "", 3, "", "", "%s", text.c_str());
        EXPECT_EQ(last.message, text);
    }
    KorvWriteLog(1, 2, "", 3, "", "", "%ls", L"\u5047"); // not to be had in the "C" locale
    EXPECT_TRUE(last.message == "%ls" || last.message.empty()) << "a printf that takes it leaves the character out";
}

TEST(CloudLogger, WritesToTheSinksThatAreThere)
{
    const auto first = std::make_shared<Logger::CaptureSink>();
    Lines second;
    logger().AddSink(nullptr);
    logger().AddSink(first);
    logger().AddSink(first);
    log("one");
    {
        const auto sink = attached([&](const LogEntry& entry) { second.push_back(entry.message); });
        logger().RemoveSink(first);
        log("two");
    }
    log("nobody listens any more");
    ASSERT_EQ(first->Entries().size(), 1);
    EXPECT_EQ(first->Entries()[0].message, "one");
    EXPECT_EQ(second, Lines{"two"});
}

TEST(CloudLogger, DropsWhatASinkThrowsAndWhatItLogs)
{
    const auto failing = attached([](const LogEntry&) {
        log("from the sink");
        KorvWriteLog(0, 0, "", 0, "", "", "from the sink");
        throw std::runtime_error("disk full");
    });
    Lines lines;
    const auto sink = attached([&](const LogEntry& entry) { lines.push_back(entry.message); });
    log("one");
    KorvWriteLog(0, 0, "", 0, "", "", "two");
    EXPECT_EQ(lines, (Lines{"one", "two"}));
}

// Threads log while sinks come and go: lines arrive one at a time, a sink that stays misses none, and a sink that was
// removed is left in peace.
TEST(CloudLogger, TakesLinesAndSinksFromManyThreads)
{
    constexpr int threadCount = 4;
    constexpr int linesPerThread = 500;
    std::atomic<int> inside{0};
    std::atomic<int> overlaps{0};
    std::atomic<int> afterRemoval{0};
    int seen = 0; // written under the logger's lock only
    const auto staying = attached([&](const LogEntry& entry) {
        overlaps += inside++ == 0 ? 0 : 1;
        seen += entry.message == std::to_string(entry.line) ? 1 : 0;
        std::this_thread::yield();
        --inside;
    });
    testsupport::runOnThreads(threadCount + 1, [&](int thread) {
        for (int line = 0; line < linesPerThread && thread < threadCount; line += 2) {
            logger().Output(thread, 2, line, "f", std::to_wstring(line), true);
            KorvWriteLog(thread, 2, "", line + 1, "", "", "%d", line + 1);
        }
        for (int round = 0; round < 100 && thread == threadCount; ++round) {
            std::atomic<bool> removed{false};
            {
                const auto passing = attached([&](const LogEntry&) { afterRemoval += removed ? 1 : 0; });
                std::this_thread::yield();
            }
            removed = true;
        }
    });
    EXPECT_EQ(overlaps, 0);
    EXPECT_EQ(afterRemoval, 0);
    EXPECT_EQ(seen, threadCount * linesPerThread);
}

TEST(RotatingFileSink, WritesOnePlainLinePerEntry)
{
    const testsupport::TestFolder folder;
    const std::filesystem::path file = folder.path() / platform::toPath(L"Protokoll \u00E4 \u5047.log");
    const auto sink = attached(Logger::MakeRotatingFileSink(file, 1'000'000, 1));
    logger().Output(0, 5, 42, "Class::Function", std::string("first\nsecond\x1B[2J\r\t\x7F{} %d"), true);
    KorvWriteLog(31, 1, "unknown", 7, "source", "Other", "printed %d", 5);
    const std::string time = R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} )"; // lines do not wait in a buffer
    EXPECT_EQ(std::regex_replace(testsupport::bytesOf(file), std::regex(time + "|\r"), ""),
              R"([severity 5] module 0 Class::Function:42 first\nsecond\x1b[2J\x0d\x09\x7f{} %d)"
              "\n[severity 1] module 31 [unknown] source Other:7 printed 5\n");
    EXPECT_THROW(Logger::MakeRotatingFileSink(folder.path(), 1000, 1), std::runtime_error) << "not to be opened";
}

TEST(GlobalParamWrapper, HandsOutDefaultsThenWhatWasSet)
{
    GlobalParamWrapper& settings = *GlobalParamWrapper::GetInstance();
    EXPECT_LE(std::abs(settings.GetServerTime() - std::time(nullptr)), 60);
    EXPECT_EQ(settings.GetUserDataBaseFolder() + settings.GetUserCachePath(), L"");
    EXPECT_EQ(settings.GetRecyFileAutoDelInterval(), 30);
    EXPECT_FALSE(settings.GetEnableShowLostDiskFile());
    settings.SetUserDataBaseFolder(L"folder");
    settings.SetUserCachePath(L"cache");
    settings.SetServerTime(-5);
    EXPECT_EQ(settings.GetUserDataBaseFolder() + settings.GetUserCachePath(), L"foldercache");
    EXPECT_EQ(settings.GetServerTime(), -5);
}

} // namespace
