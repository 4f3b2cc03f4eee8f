#include "terminal/reporter.h"

#include "platform/terminal.h"
#include "terminal/displaytext.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace dbservice {

namespace {

bool colourWanted()
{
    const char* const refused = std::getenv("NO_COLOR");
    return (refused == nullptr || *refused == '\0') && platform::showsColours(platform::Stream::Error);
}

} // namespace

Reporter::Reporter()
    : m_terminal(platform::isTerminal(platform::Stream::Error)),
      m_colour(colourWanted()),
      m_lastProgress(std::chrono::steady_clock::now())
{
}

Reporter::~Reporter()
{
    endProgress();
}

void Reporter::error(std::string_view text)
{
    line("\x1b[31m", "dbservice: ", text);
}

void Reporter::warning(std::string_view text)
{
    line("\x1b[33m", "dbservice: warning: ", text);
}

void Reporter::note(std::string_view text)
{
    if (!m_quiet) {
        line("", "", text);
    }
}

void Reporter::ask(std::string_view question)
{
    const std::lock_guard lock(m_mutex);
    clearBar();
    std::cerr << printable(question) << ' ' << std::flush;
}

void Reporter::progress(double done, std::string_view text)
{
    const std::lock_guard lock(m_mutex);
    const auto now = std::chrono::steady_clock::now();
    if (m_quiet || now - m_lastProgress < std::chrono::milliseconds(m_terminal ? 100 : 2000)) {
        return;
    }
    m_lastProgress = now;
    const std::string percent = std::to_string(std::clamp(static_cast<int>(done * 100), 0, 100)) + " %";
    if (!m_terminal) {
        std::cerr << percent << "  " << printable(text) << std::endl;
        return;
    }
    constexpr std::size_t cells = 30;
    const auto full = static_cast<std::size_t>(std::clamp(done, 0.0, 1.0) * cells);
    std::string bar =
        "[" + std::string(full, '#') + std::string(cells - full, '.') + "] " + percent + "  " + printable(text);
    const int width = platform::terminalWidth(platform::Stream::Error);
    bar = fitted(bar, (width > 0 ? width : 80) - 1);
    const int barWidth = cellWidth(bar);
    std::cerr << '\r' << bar << std::string(static_cast<std::size_t>(std::max(0, m_barWidth - barWidth)), ' ')
              << std::flush;
    m_barWidth = barWidth;
}

void Reporter::endProgress()
{
    const std::lock_guard lock(m_mutex);
    clearBar();
}

void Reporter::clearBar()
{
    if (m_barWidth > 0) {
        std::cerr << '\r' << std::string(static_cast<std::size_t>(m_barWidth), ' ') << '\r' << std::flush;
        m_barWidth = 0;
    }
}

void Reporter::line(std::string_view colour, std::string_view head, std::string_view text)
{
    const std::lock_guard lock(m_mutex);
    clearBar();
    const bool coloured = m_colour && !colour.empty();
    std::cerr << (coloured ? colour : "") << head << (coloured ? "\x1b[0m" : "") << printable(text) << std::endl;
}

} // namespace dbservice
