#include "support/tooltest.h"

#include "platform/paths.h"
#include "support/lists.h"
#include "support/process.h"
#include "support/sqlitefile.h"

#include <fstream>
#include <iterator>
#include <sstream>

namespace fs = std::filesystem;

namespace testsupport {

namespace {

/// The program under test, wherever the current folder goes.
const std::string program = platform::toUtf8(fs::absolute(DBSERVICE_PROGRAM));

std::string textOf(const fs::path& file)
{
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

fs::path utf8Path(const std::string& text)
{
    return fs::path(std::u8string(text.begin(), text.end()));
}

void writeFile(const fs::path& file, const std::string& content)
{
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
}

testing::AssertionResult refused(const Ran& ran, const std::string& told)
{
    return ran.out.empty() ? ended(ran, 1, told) : testing::AssertionFailure() << "it shows " << ran.out;
}

testing::AssertionResult ended(const Ran& ran, int code, const std::string& told)
{
    return ran.code == code ? contains(ran.err, told)
                            : testing::AssertionFailure() << "exit code " << ran.code << ", " << ran.out << ran.err;
}

testing::AssertionResult holds(const nlohmann::json& line, const nlohmann::json& part)
{
    nlohmann::json both = line;
    both.update(part);
    return both == line ? testing::AssertionSuccess() : testing::AssertionFailure() << part << " is not in " << line;
}

testing::AssertionResult contains(const std::string& text, const std::string& part)
{
    return testing::AssertionResult(text.find(part) != std::string::npos) << "no " << part << " in: " << text;
}

std::vector<nlohmann::json> linesOf(const Ran& ran)
{
    std::vector<nlohmann::json> lines;
    std::istringstream stream(ran.out);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(nlohmann::json::parse(line));
    }
    return lines;
}

std::vector<int> numbers(const Ran& scan)
{
    const nlohmann::json result = nlohmann::json::parse(scan.out);
    return {result["added"],   result["changed"],   result["unchanged"],
            result["removed"], result["leftAlone"], result["rows"]};
}

ToolTest::ToolTest()
    : m_cacheFolder(onPosix ? "XDG_CACHE_HOME" : "LOCALAPPDATA", platform::toUtf8(m_folder.path() / "cache")),
      m_temporaryFolder(onPosix ? "TMPDIR" : "TMP", platform::toUtf8(temporary()))
{
    fs::create_directories(source());
    fs::create_directories(temporary());
}

Ran ToolTest::run(const Arguments& arguments, const Arguments& before) const
{
    const fs::path out = m_folder.path() / "out.txt";
    const fs::path err = m_folder.path() / "err.txt";
    Arguments commandLine = before;
    commandLine.push_back(program);
    commandLine.insert(commandLine.end(), arguments.begin(), arguments.end());
    const int code = runProgram(commandLine, out, err);
    return {code, textOf(out), textOf(err)};
}

Ran ToolTest::onStore(Arguments arguments, const Arguments& before) const
{
    arguments.insert(arguments.begin(), {"--folder", platform::toUtf8(store())});
    return run(arguments, before);
}

Ran ToolTest::scan(const Arguments& before) const
{
    return onStore({"--json", "scan", platform::toUtf8(source())}, before);
}

void ToolTest::succeed(const std::vector<std::string>& lines) const
{
    for (const std::string& line : lines) {
        const Ran ran = onStore(split(line));
        EXPECT_EQ(ran.code, 0) << line << ": " << ran.err;
    }
}

void ToolTest::fill(const std::vector<std::string>& names) const
{
    for (const std::string& name : names) {
        writeFile(source() / utf8Path(name), name);
    }
}

std::vector<nlohmann::json> ToolTest::rows(Arguments arguments) const
{
    arguments.insert(arguments.begin(), "--json");
    const Ran ran = onStore(arguments);
    EXPECT_EQ(ran.code, 0) << ran.err;
    return linesOf(ran);
}

std::vector<std::string> ToolTest::names(const Arguments& arguments) const
{
    return mapped(rows(arguments), [](const auto& shown) { return shown["name"].template get<std::string>(); });
}

void ToolTest::changeStore(const std::string& sql, const std::string& file) const
{
    SqliteFile(store() / utf8Path(file), SqliteFile::Collation::NameCompare).exec(sql);
}

ToolTest::Arguments ToolTest::withoutPrivileges() const
{
    if constexpr (onPosix) {
        const fs::path closed = m_folder.path() / "closed";
        fs::create_directory(closed);
        fs::permissions(closed, fs::perms::none);
        std::error_code refused;
        const fs::directory_iterator looked(closed, refused);
        fs::remove(closed);
        if (!refused) {
            return {"setpriv", "--bounding-set", "-dac_override,-dac_read_search"};
        }
    }
    return {};
}

} // namespace testsupport
