#include "platform/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace platform {

namespace {

int descriptor(Stream stream)
{
    return stream == Stream::Output ? STDOUT_FILENO : STDERR_FILENO;
}

} // namespace

bool isTerminal(Stream stream) noexcept
{
    return ::isatty(descriptor(stream)) != 0;
}

int terminalWidth(Stream stream) noexcept
{
    winsize size{};
    return ::ioctl(descriptor(stream), TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

} // namespace platform
