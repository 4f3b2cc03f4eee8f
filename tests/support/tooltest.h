#pragma once

#include "support/filebytes.h"
#include "support/process.h"
#include "support/testfolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace testsupport {

inline constexpr bool onPosix = std::filesystem::path::preferred_separator == '/';

std::filesystem::path utf8Path(const std::string& text);
/// Makes the folders on the way.
void writeFile(const std::filesystem::path& file, const std::string& content);

/// How a run of the tool ended.
struct Ran {
    int code;
    std::string out;
    std::string err;
};

/// Whether the program gave up: with code 1, nothing on its standard output, and `told` among what it said.
testing::AssertionResult refused(const Ran& ran, const std::string& told);
testing::AssertionResult contains(const std::string& text, const std::string& part);

/// Whether the program ended so, and `told` is among what it said.
testing::AssertionResult ended(const Ran& ran, int code, const std::string& told);
/// Whether a line of JSON has all of `part`.
testing::AssertionResult holds(const nlohmann::json& line, const nlohmann::json& part);

/// The lines of a command's JSON.
std::vector<nlohmann::json> linesOf(const Ran& ran);
/// The numbers of a scan: added, changed, unchanged, removed, left alone, rows.
std::vector<int> numbers(const Ran& scan);

/// A test of the command-line tool, with a folder for a store and one to read from.
class ToolTest : public testing::Test {
protected:
    using Arguments = std::vector<std::string>;

    ToolTest();

    std::filesystem::path store() const { return m_folder.path() / "store"; }
    std::filesystem::path storeFile() const { return store() / "DriveModuleData.dat"; }
    std::filesystem::path source() const { return m_folder.path() / "source"; }
    /// Where the tool puts its copies, which are gone when it has ended.
    std::filesystem::path temporary() const { return m_folder.path() / "temporary"; }
    void TearDown() override { EXPECT_TRUE(std::filesystem::is_empty(temporary())); }

    /// Runs the program; `before` is another program with its arguments, which starts it.
    Ran run(const Arguments& arguments, const Arguments& before = {}) const;
    Ran onStore(Arguments arguments, const Arguments& before = {}) const;
    Ran scan(const Arguments& before = {}) const;
    /// Runs commands on the store, with blanks between their words, which all have to go well.
    void succeed(const std::vector<std::string>& lines) const;
    /// Makes files to read from, each with its name in it.
    void fill(const std::vector<std::string>& names) const;

    std::vector<nlohmann::json> rows(Arguments arguments) const;
    /// The names in them.
    std::vector<std::string> names(const Arguments& arguments) const;
    nlohmann::json row(const std::string& path) const { return rows({"stat", path}).at(0); }

    void changeStore(const std::string& sql, const std::string& file = "DriveModuleData.dat") const;

    /// What starts a program so that permissions count: the superuser may do everything, unless he gives that up.
    Arguments withoutPrivileges() const;

    TestFolder m_folder;

private:
    /// Where the tool remembers what it has seen.
    EnvironmentVariable m_cacheFolder;
    EnvironmentVariable m_temporaryFolder;
};

} // namespace testsupport
