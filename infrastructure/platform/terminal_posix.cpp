#include "platform/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace platform {

namespace {

int descriptor(Stream stream)
{
    switch (stream) {
    case Stream::Input:
        return STDIN_FILENO;
    case Stream::Output:
        return STDOUT_FILENO;
    case Stream::Error:
        break;
    }
    return STDERR_FILENO;
}

} // namespace

bool isTerminal(Stream stream) noexcept
{
    return ::isatty(descriptor(stream)) != 0;
}

bool showsColours(Stream stream) noexcept
{
    const char* const kind = std::getenv("TERM");
    return isTerminal(stream) && kind != nullptr && std::string_view(kind) != "dumb";
}

int terminalWidth(Stream stream) noexcept
{
    winsize size{};
    return ::ioctl(descriptor(stream), TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

} // namespace platform
