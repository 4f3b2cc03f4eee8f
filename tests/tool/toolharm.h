#pragma once

#include "support/tooltest.h"
#include "support/trialrun.h"

#include <cstdint>

namespace toolharm {

using Words = std::vector<std::string>;
using Files = std::map<std::string, std::string>;

/// The folder that each trial begins anew in, always of the same name. In command lines it is called @.
class Bench {
public:
    Bench();

    std::filesystem::path at(const std::string& name) const { return m_path / testsupport::utf8Path(name); }
    /// The words of a line, in which # stands for what may hold anything.
    Words words(const std::string& line, const std::string& hash = "#") const;

    Files files(const std::string& folder = ".") const { return testsupport::filesBelow(m_path / folder); }
    void lay(const Files& files) const;

    /// The command line of a process that is the tool.
    static Words program(Words words, std::int64_t change);
    /// Runs the tool; it is killed at that change of a file. With 0 it is not, and prints how many changes it made
    /// instead of its results. With less it is as people have it.
    testsupport::Ran run(const Words& words, std::int64_t change = -1) const;
    testsupport::Ran run(const std::string& line) const { return run(words(line)); }
    /// For what is laid: throws unless the tool does it.
    void make(const std::string& line) const;

private:
    testsupport::TestFolder m_all;
    std::filesystem::path m_path = m_all.path() / "at";
    testsupport::EnvironmentVariable m_cache;
    testsupport::EnvironmentVariable m_temporary;
};

/// What is only in one of them, or not the same in both.
Files differences(const Files& some, const Files& others);

/// Lines on a bench's `store` for everything that shows something.
Words linesThatShow();

using Part = void(testsupport::Run&);
Part kills, damage, names;

} // namespace toolharm
