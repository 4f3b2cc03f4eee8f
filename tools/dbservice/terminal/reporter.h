#pragma once

#include <chrono>
#include <mutex>
#include <string>
#include <string_view>

namespace dbservice {

/// What goes to standard error: warnings, errors, notes and progress. Texts are escaped on their way out. On a
/// terminal progress is a bar that is drawn anew in place; elsewhere it is a plain line every other second. Any thread
/// may tell things, since the library logs from its own.
class Reporter {
public:
    Reporter();
    Reporter(const Reporter&) = delete;
    Reporter& operator=(const Reporter&) = delete;
    ~Reporter();

    /// No notes and no progress from here on; warnings and errors stay.
    void beQuiet() { m_quiet = true; }

    void error(std::string_view text);
    void warning(std::string_view text);
    void note(std::string_view text);
    /// Leaves the cursor behind the question.
    void ask(std::string_view question);

    /// `done` goes from 0 to 1.
    void progress(double done, std::string_view text);
    void endProgress();

private:
    void line(std::string_view colour, std::string_view head, std::string_view text);
    void clearBar();

    std::mutex m_mutex;
    const bool m_terminal;
    const bool m_colour;
    bool m_quiet = false;
    int m_barWidth = 0;
    std::chrono::steady_clock::time_point m_lastProgress;
};

} // namespace dbservice
