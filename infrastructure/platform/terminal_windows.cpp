#include "platform/terminal.h"

#include <windows.h>

namespace platform {

namespace {

HANDLE handle(Stream stream)
{
    switch (stream) {
    case Stream::Input:
        return GetStdHandle(STD_INPUT_HANDLE);
    case Stream::Output:
        return GetStdHandle(STD_OUTPUT_HANDLE);
    case Stream::Error:
        break;
    }
    return GetStdHandle(STD_ERROR_HANDLE);
}

} // namespace

bool isTerminal(Stream stream) noexcept
{
    DWORD mode = 0;
    return GetConsoleMode(handle(stream), &mode) != 0;
}

bool showsColours(Stream stream) noexcept
{
    DWORD mode = 0;
    return GetConsoleMode(handle(stream), &mode) != 0 &&
        SetConsoleMode(handle(stream), mode | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

int terminalWidth(Stream stream) noexcept
{
    CONSOLE_SCREEN_BUFFER_INFO info{};
    return GetConsoleScreenBufferInfo(handle(stream), &info) != 0 ? info.srWindow.Right - info.srWindow.Left + 1 : 0;
}

} // namespace platform
