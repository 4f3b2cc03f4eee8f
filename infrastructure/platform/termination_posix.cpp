#include "platform/termination.h"

#include "platform/thread.h"

#include <pthread.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <utility>

namespace platform {

namespace {

std::atomic<pthread_t> watcher{};

/// For the one signal that comes to the thread that causes it, by a write.
void handOver(int signal)
{
    ::pthread_kill(watcher, signal);
    for (;;) {
        ::pause();
    }
}

bool isIgnored(int signal)
{
    struct sigaction current { };
    return ::sigaction(signal, nullptr, &current) == 0 && current.sa_handler == SIG_IGN;
}

void setHandler(int signal, void (*handler)(int))
{
    struct sigaction action { };
    action.sa_handler = handler;
    ::sigaction(signal, &action, nullptr);
}

/// Takes every signal of the set that comes to the process or to this thread, which must have them blocked.
void watch(const sigset_t& signals, const std::function<void()>& handler)
{
    watcher = ::pthread_self();
    if (!isIgnored(SIGPIPE)) {
        setHandler(SIGPIPE, handOver);
    }
    int signal = 0;
    while (::sigwait(&signals, &signal) != 0) { }
    handler();
    setHandler(signal, SIG_DFL);
    ::pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    ::pthread_kill(::pthread_self(), signal);
}

} // namespace

void onTermination(std::function<void()> handler)
{
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        if (!isIgnored(signal)) {
            ::sigaddset(&signals, signal);
        }
    }
    // Threads take their mask from the one that starts them.
    sigset_t watched = signals;
    ::sigaddset(&watched, SIGPIPE);
    sigset_t before;
    ::pthread_sigmask(SIG_BLOCK, &watched, &before);
    ThreadHandle thread = startThread([watched, handler = std::move(handler)] { watch(watched, handler); }, 0, nullptr);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (thread != nullptr) {
        ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
        closeThread(thread);
    }
}

} // namespace platform
