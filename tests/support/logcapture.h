#pragma once

#include "clientservices/logsinks.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace testsupport {

/// A line that a test waits for. A message that ends in '*' stands for every message that begins so.
struct ExpectedLine {
    std::string function;
    std::string message;
    int severity = 5;
};

/// A failure line of the engine.
ExpectedLine engine(const std::string& function, const std::string& message);

/// The log of the library for as long as the object lives. Each look takes the lines that it has seen away; a failure
/// line that nobody has looked for fails the test at the end.
class LogCapture {
public:
    LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    /// Whether the failure lines since the last look are exactly these, in this order.
    testing::AssertionResult failuresWere(const std::vector<ExpectedLine>& lines);
    /// The same for all lines.
    testing::AssertionResult linesWere(const std::vector<ExpectedLine>& lines);
    /// All lines since the last look, as text.
    std::vector<std::string> take();

private:
    std::vector<Logger::LogEntry> takeEntries(bool failuresOnly);

    std::shared_ptr<Logger::CaptureSink> m_sink;
};

} // namespace testsupport
