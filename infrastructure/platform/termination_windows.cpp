#include "platform/termination.h"

#include <windows.h>

#include <utility>

namespace platform {

namespace {

const std::function<void()>* installed = nullptr;

BOOL WINAPI onControl(DWORD)
{
    (*installed)();
    return FALSE; // the system's own handler is next, and ends the process
}

} // namespace

void onTermination(std::function<void()> handler)
{
    installed = new std::function<void()>(std::move(handler));
    SetConsoleCtrlHandler(onControl, TRUE);
}

} // namespace platform
