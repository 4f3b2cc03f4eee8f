// Any arguments of the tool, one a line, in a folder with a store.
#include "fuzzing.h"

void fuzzing::attempt(const std::string& input)
{
    std::vector<std::string> arguments(1);
    for (std::istringstream lines(input); std::getline(lines, arguments.back()); arguments.emplace_back()) { }
    const auto holds = [&input](const char* text) { return input.find(text) != std::string::npos; };
    if (holds("simulate") || ((holds("scan") || holds("import")) && holds("\n/"))) {
        return; // may be told to work for hours, or to scan the system
    }
    arguments.pop_back();
    startAnew();
    runTool(arguments);
    testsupport::writeBytes(control ? "main.dat" : "../other", "");
    constexpr std::string_view showing = " cards changes count find info logs ls pending recycle stat view ";
    const bool onlyShows = showing.find(' ' + input.substr(0, input.find('\n')) + ' ') != std::string::npos &&
        !holds("--log") && !holds("--trace");
    expect(!onlyShows || filesBelow(".") == filesBelow(samples / "store"),
           "a command that only shows has changed a file");
}
