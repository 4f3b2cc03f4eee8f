#include "support/trialrun.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <thread>

namespace testsupport {

namespace {

std::string caseAtHand;
std::atomic<int> casesBegun = 0;
[[noreturn]] void giveUp(const char* what)
{
    std::cout << "FELL " << caseAtHand << ": " << what << std::endl;
    std::_Exit(3);
}

void waitForEndless()
{
    for (int before = -1; before != casesBegun; std::this_thread::sleep_for(std::chrono::minutes(2))) {
        before = casesBegun;
    }
    giveUp("runs without end");
}

} // namespace

void Run::watch()
{
    for (const int signal : {SIGSEGV, SIGABRT, SIGFPE, SIGILL}) {
        std::signal(signal, [](int) { giveUp("crashed"); });
    }
    std::thread(waitForEndless).detach();
}

Run::Run(const std::vector<std::string>& arguments) : name(arguments.at(0))
{
    for (std::size_t at = 1; at < arguments.size(); ++at) {
        if (arguments[at] == "--share") {
            m_share = std::stod(arguments.at(++at));
        } else if (arguments[at] == "--seconds") {
            m_seconds = std::stod(arguments.at(++at));
        } else if (arguments[at] == "--seed") {
            seed = static_cast<std::uint32_t>(std::stoul(arguments.at(++at)));
        } else if (arguments[at] == "--control") {
            control = true;
        } else {
            rest.push_back(arguments[at]);
        }
    }
    random.seed(seed);
}

bool Run::takes(double of)
{
    return static_cast<double>(random()) < of * m_share * 0x1p32 &&
        std::chrono::steady_clock::now() - m_start < std::chrono::duration<double>(m_seconds);
}

void Run::trying(const std::string& what, int count)
{
    caseAtHand = what;
    m_tried += count;
    ++casesBegun;
}

bool Run::expect(bool holds, const std::string& broken)
{
    if (!holds && ++m_fell <= 20) {
        std::cout << "FELL " << caseAtHand << ": " << broken << std::endl;
    }
    return holds;
}

void Run::tell(const std::string& figure)
{
    std::cout << "  " << figure << std::endl;
}

int Run::end() const
{
    const auto time = std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - m_start);
    std::cout << name << (control ? " with its fault on purpose" : "") << ": tried " << m_tried << ", survived "
              << m_tried - m_fell << ", seed " << seed << ", " << time.count() << " s" << std::endl;
    return m_tried > 0 && (m_fell > 0) == control ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace testsupport
