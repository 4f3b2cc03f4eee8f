#include "platform/thread.h"

#include <pthread.h>

#include <array>
#include <atomic>
#include <memory>
#include <utility>

namespace platform {

namespace {

struct Thread {
    std::function<void()> body;
    pthread_t id{};
    std::atomic<bool> ended = false;
};

/// The handle is one, and the thread has another.
using Share = std::shared_ptr<Thread>;

Thread& threadOf(ThreadHandle handle)
{
    return **static_cast<Share*>(handle);
}

void* run(void* argument)
{
    const std::unique_ptr<Share> share(static_cast<Share*>(argument));
    Thread& thread = **share;
    std::exchange(thread.body, nullptr)();
    thread.ended = true;
    thread.ended.notify_all();
    return nullptr;
}

} // namespace

ThreadHandle startThread(std::function<void()> body, unsigned stackSize, void*)
{
    auto handle = std::make_unique<Share>(std::make_shared<Thread>());
    Thread& thread = **handle;
    thread.body = std::move(body);
    auto share = std::make_unique<Share>(*handle);

    pthread_attr_t attributes;
    if (::pthread_attr_init(&attributes) != 0) {
        return nullptr;
    }
    ::pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    if (stackSize != 0) {
        ::pthread_attr_setstacksize(&attributes, stackSize); // a size that the system refuses leaves its default
    }
    const bool started = ::pthread_create(&thread.id, &attributes, run, share.get()) == 0;
    ::pthread_attr_destroy(&attributes);
    if (!started) {
        return nullptr;
    }
    (void)share.release(); // the thread's own now
    return handle.release();
}

void waitForThread(ThreadHandle thread) noexcept
{
    if (thread != nullptr && ::pthread_equal(threadOf(thread).id, ::pthread_self()) == 0) {
        threadOf(thread).ended.wait(false);
    }
}

bool hasThreadEnded(ThreadHandle thread) noexcept
{
    return thread == nullptr || threadOf(thread).ended;
}

void closeThread(ThreadHandle thread) noexcept
{
    const std::unique_ptr<Share> share(static_cast<Share*>(thread));
}

void setThreadName(const std::string& name) noexcept
{
    std::array<char, 16> taken{}; // with the NUL; the system refuses what is longer
    name.copy(taken.data(), taken.size() - 1);
    ::pthread_setname_np(::pthread_self(), taken.data());
}

} // namespace platform
