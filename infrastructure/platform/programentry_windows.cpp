#include "platform/programentry.h"

#include "platform/text.h"

#include <windows.h>

namespace {

/// The console takes UTF-8 for as long as the program runs.
class Utf8Console {
public:
    Utf8Console() { SetConsoleOutputCP(CP_UTF8); }
    Utf8Console(const Utf8Console&) = delete;
    Utf8Console& operator=(const Utf8Console&) = delete;
    ~Utf8Console() { SetConsoleOutputCP(m_before); }

private:
    const UINT m_before = GetConsoleOutputCP();
};

} // namespace

extern "C" int wmain(int argc, wchar_t** argv)
{
    const Utf8Console console;
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.push_back(platform::toUtf8(argv[i]));
    }
    return platform::programMain(arguments);
}
