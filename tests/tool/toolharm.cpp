// What the command-line tool leaves unharmed. See docs/reliability.md.

#include "toolharm.h"

#include "application.h"
#include "platform/paths.h"
#include "platform/programentry.h"
#include "stores/storewatch.h"
#include "support/faultydisk.h"
#include "support/lists.h"

#include <algorithm>
#include <ctime>
#include <iostream>
#include <iterator>
#include <sstream>
#include <thread>

namespace fs = std::filesystem;
using namespace testsupport;

namespace toolharm {

namespace {

/// Ends a process that runs without end, or that waits so.
void limitTime()
{
    std::thread([] {
        for (int tenths = 0; std::clock() / CLOCKS_PER_SEC < 20 && tenths < 1000; ++tenths) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        std::_Exit(124);
    }).detach();
}

// tool CHANGE WORD...
int asTool(const Words& arguments)
{
    limitTime();
    const Words words(arguments.begin() + 2, arguments.end());
    const std::int64_t change = std::stoll(arguments.at(1));
    if (change < 0) {
        return dbservice::run(words);
    }
    std::ostream shown(std::cout.rdbuf());
    std::stringbuf unseen;
    std::cout.rdbuf(&unseen);
    std::cerr.rdbuf(&unseen);
    dbservice::StoreWatch::instance(); // below the faulty disk
    const FaultyDisk disk(change > 0 ? FaultyDisk::Fault::Kill : FaultyDisk::Fault::None, change);
    const int code = dbservice::run(words);
    shown << (change == 0 ? std::to_string(FaultyDisk::changes()) : "") << std::flush;
    std::_Exit(code); // `unseen` is still in its place
}

} // namespace

Bench::Bench()
    : m_cache(onPosix ? "XDG_CACHE_HOME" : "LOCALAPPDATA", platform::toUtf8(m_path / "cache")),
      m_temporary(onPosix ? "TMPDIR" : "TMP", platform::toUtf8(m_path / "temporary"))
{
}

Words Bench::words(const std::string& line, const std::string& hash) const
{
    Words words = split(line);
    for (std::string& word : words) {
        if (const std::size_t at = word.find('#'); at != std::string::npos) {
            word.replace(at, 1, hash);
        } else if (word.starts_with('@')) {
            word.replace(0, 1, platform::toUtf8(m_path));
        }
    }
    return words;
}

void Bench::lay(const Files& files) const
{
    fs::remove_all(m_path);
    fs::create_directories(m_path / "temporary");
    for (const auto& [name, bytes] : files) {
        writeFile(at(name), bytes);
    }
}

Words Bench::program(Words words, std::int64_t change)
{
    words.insert(words.begin(), {TOOLHARM_PROGRAM, "tool", std::to_string(change)});
    return words;
}

Ran Bench::run(const Words& words, std::int64_t change) const
{
    const fs::path out = m_all.path() / "out";
    const fs::path err = m_all.path() / "err";
    const int code = runProgram(program(words, change), out, err);
    return {code, bytesOf(out), bytesOf(err)};
}

void Bench::make(const std::string& line) const
{
    if (const Ran ran = run(line); ran.code != 0) {
        throw std::runtime_error(line + ": " + ran.err);
    }
}

Files differences(const Files& some, const Files& others)
{
    Files found;
    std::ranges::set_symmetric_difference(some, others, std::inserter(found, found.end()));
    return found;
}

} // namespace toolharm

int platform::programMain(const std::vector<std::string>& arguments)
{
    using namespace toolharm;
    const std::map<std::string, Part*> parts{{"kills", kills}, {"damage", damage}, {"names", names}};
    try {
        if (arguments.at(0) == "tool") {
            return asTool(arguments);
        }
        Run::watch();
        Run run(arguments);
        parts.at(run.name)(run);
        return run.end();
    } catch (const std::exception& error) {
        std::cerr << "toolharm kills|damage|names [--share 0.1] [--seed 1] [--control]: " << error.what() << '\n';
        return 2;
    }
}
