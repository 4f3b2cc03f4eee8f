#include "platform/thread.h"

#include "platform/text.h"

#include <windows.h>

#include <process.h>

#include <cstdint>
#include <memory>
#include <utility>

namespace platform {

namespace {

unsigned __stdcall run(void* argument)
{
    const std::unique_ptr<std::function<void()>> body(static_cast<std::function<void()>*>(argument));
    (*body)();
    return 0;
}

} // namespace

ThreadHandle startThread(std::function<void()> body, unsigned stackSize, void* attributes)
{
    auto argument = std::make_unique<std::function<void()>>(std::move(body));
    const std::uintptr_t thread = _beginthreadex(attributes, stackSize, run, argument.get(), 0, nullptr);
    if (thread == 0) {
        return nullptr;
    }
    (void)argument.release(); // the thread's own now
    return reinterpret_cast<ThreadHandle>(thread);
}

void waitForThread(ThreadHandle thread) noexcept
{
    if (thread != nullptr && GetThreadId(thread) != GetCurrentThreadId()) {
        WaitForSingleObject(thread, INFINITE);
    }
}

bool hasThreadEnded(ThreadHandle thread) noexcept
{
    return thread == nullptr || WaitForSingleObject(thread, 0) == WAIT_OBJECT_0;
}

void closeThread(ThreadHandle thread) noexcept
{
    if (thread != nullptr) {
        CloseHandle(thread);
    }
}

void setThreadName(const std::string& name) noexcept
{
    // Windows has it from version 10 on.
    using SetDescription = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    const auto address = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32"), "SetThreadDescription"));
    if (address == nullptr) {
        return;
    }
    try {
        reinterpret_cast<SetDescription>(address)(GetCurrentThread(), toWide(name).c_str());
    } catch (...) { // out of memory: a thread without a name
    }
}

} // namespace platform
