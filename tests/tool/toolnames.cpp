// Names that are made to do harm, through every command that takes or shows one.

#include "toolharm.h"

#include "platform/text.h"
#include "stores/storefile.h"
#include "support/sqlitefile.h"
#include "support/storestate.h"

#include <algorithm>

using namespace testsupport;

namespace toolharm {

namespace {

const std::string hostile[]{
    R"(it's "quoted" `id` $(id) \ %s)",
    "'; DROP TABLE DriveDataTable; --",
    "\" OR 1=1 --",
    "\x1b[31mred\x1b[0m \x1b]0;title\x07",
    "\xC2\x9B\x33\x31m and \xC2\x9D\x30;t\xC2\x9C",
    "a\xE2\x80\xAEgpj.exe\xE2\x80\xAC\xE2\x81\xA6.\xE2\x81\xA9",
    "two\nlines\r\tand\x08\x7f\xE2\x80\xA8",
    "<script>alert(1)</script>",
    "</script><img src=x onerror=\"alert(1)\">&amp;",
    "]]>--><!--{{x}} ${x}",
    "[a,b]*?",
};

/// A line that takes a name, #, and the file and the SQL that find it in the column where it belongs.
const struct {
    std::string line, file, found;
} takers[]{
    {"mkdir /#", "DriveModuleData.dat", "DriveDataTable WHERE name = "},
    {"rename /in/old -- #", "DriveModuleData.dat", "DriveDataTable WHERE renameName = "},
    {"properties set -- # #", "main.dat", "UserProperties WHERE Key = Value AND Value = "},
    {"shortcuts add --title #", "FastAccess.dat", "FastAccess WHERE Title = "},
    {"transfers add upload --name #", "transmission.dat", "UploadTaskTable WHERE fileName = "},
    {"transfers add download --name #", "transmission.dat", "DownloadTaskTable WHERE fileName = "},
    {"transfers add completed --name #", "transmission.dat", "CompletedTaskTable WHERE fileName = "},
    {"transfers add task --unique-id q --name #", "transmission.dat", "TransferTask WHERE FileName = "},
};

/// Whether it moves a cursor, colours, or turns the direction.
bool isTreacherous(const std::string& text)
{
    return std::ranges::any_of(platform::toWide(text), [](wchar_t letter) {
        return (letter < 0x20 && letter != '\n') || (letter >= 0x7F && letter < 0xA0) ||
            (letter >= 0x2028 && letter <= 0x202E) || (letter >= 0x2066 && letter <= 0x2069);
    });
}

} // namespace

void names(Run& run)
{
    const Bench bench;
    bench.lay({});
    writeFile(bench.at("source/in/old"), "x");
    bench.make("--folder @/store init --gallery g.dat");
    bench.make("--folder @/good init --gallery g.dat");
    bench.make("--folder @/store scan @/source");
    const Files good = bench.files();
    auto next = run.random();
    for (int left = run.part(std::size(hostile)); left > 0; --left) {
        const std::string& name = hostile[next++ % std::size(hostile)];
        const auto tried = [&](const std::string& line) {
            run.trying(line + " with " + nlohmann::json(name).dump());
            Ran ran = bench.run(bench.words("--folder @/store " + line, name));
            ran.out += run.control ? '\x1b' + name : ""; // the control: it gets out as it is
            run.expect(!isTreacherous(ran.out + ran.err), "what it says steers a terminal");
            run.expect(ran.code >= 0 && ran.code <= 2, "ends with " + std::to_string(ran.code) + ": " + ran.err);
            return ran;
        };
        bench.lay(good);
        const std::string text = dbservice::inQuotes(name, '\'');
        for (const auto& [line, file, found] : takers) {
            const State before = stateOf(bench.at("store"));
            const Ran ran = tried(line);
            const bool isNoName = name.find('/') != std::string::npos && line.find('/') != std::string::npos;
            run.expect(ran.code == 0 || isNoName, "it is refused: " + ran.err);
            const std::string count =
                SqliteFile(bench.at("store/" + file)).value("SELECT count(*) FROM " + found + text);
            run.expect(ran.code == 0 ? count == "1" : stateOf(bench.at("store")) == before,
                       "it is not in the store as it is");
        }
        // Where no command takes it: an id, a kind, a path, and behind a zero byte.
        SqliteFile(bench.at("store/DriveModuleData.dat"), SqliteFile::Collation::NameCompare)
            .exec("UPDATE DriveDataTable SET localAbsolutePath = " + text + ", data1 = " + text + " || char(0) || " +
                  text + ", mimeType = iif(name = 'old', " + text + ", mimeType); " +
                  "INSERT INTO DriveDataTable(fileId, name, parentId, mimeType, recycled) VALUES(" + text + ", " +
                  text + " || char(0) || " + text + ", " + text + ", 'x', 1)");
        for (const std::string& line : linesThatShow()) {
            tried(line);
            tried("--json " + line);
        }
        for (const std::string line : {"stat id:#", "ls /#", "properties get -- #", "find -- #", "init --gallery #",
                                       "recover # #", "info #", "query #", "gallery show # --gallery g.dat"}) {
            tried(line);
        }
        const std::string page = bytesOf(bench.at("report.html"));
        run.expect(!page.empty() && !isTreacherous(page), "the page has a control");
        run.expect(name.find('<') == std::string::npos || page.find(name) == std::string::npos,
                   "the page has it as it is");
    }
}

} // namespace toolharm
