// Names that are made to do harm, through every command that takes or shows one.

#include "toolharm.h"

#include "stores/storefile.h"
#include "support/sqlitefile.h"

#include <algorithm>

using namespace testsupport;
using nlohmann::json;

namespace toolharm {

namespace {

const std::string hostile[]{
    "it's \"quoted\" `id` $(id) \\ %s",
    "'; DROP TABLE DriveDataTable; --",
    "\" OR 1=1 --",
    "\x1b[31mred\x1b[0m",
    "\x1b]0;title\x07",
    "\xC2\x9B"
    "31m and \xC2\x9D"
    "0;t\xC2\x9C",
    "a\xE2\x80\xAEgpj.exe\xE2\x81\xA6",
    "two\nlines\r\tand\x08\x7f\xE2\x80\xA8",
    "<script>alert(1)</script>",
    "</script><img src=x onerror=\"alert(1)\">&amp;",
    "]]>--><!--",
    "{{x}} ${x} [a,b]",
    "*[?",
};

/// A line that takes a name at its end, the store and the SQL that finds it there.
struct Taker {
    std::string line;
    std::string file;
    std::string found;
};
const Taker takers[]{
    {"mkdir", "DriveModuleData.dat", "DriveDataTable WHERE name = "},
    {"rename /in/old --", "DriveModuleData.dat", "DriveDataTable WHERE renameName = "},
    {"properties set --", "main.dat", "UserProperties WHERE Key = Value AND Key = "},
    {"shortcuts add --title", "FastAccess.dat", "FastAccess WHERE Title = "},
    {"transfers add upload --name", "transmission.dat", "UploadTaskTable WHERE fileName = "},
    {"transfers add download --name", "transmission.dat", "DownloadTaskTable WHERE fileName = "},
    {"transfers add completed --name", "transmission.dat", "CompletedTaskTable WHERE fileName = "},
    {"transfers add task --unique-id q --name", "transmission.dat", "TransferTask WHERE FileName = "},
};

const std::string shows[]{"ls",
                          "ls --all",
                          "view other",
                          "recycle",
                          "find *",
                          "pending",
                          "query SELECT*FROM(DriveDataTable)",
                          "check",
                          "info",
                          "properties list",
                          "shortcuts list",
                          "transfers list",
                          "gallery list --gallery g.dat",
                          "diff @/empty @/store",
                          "report --force @/report.html"};

/// The first byte or character that moves a cursor, colours, or turns the direction; empty if there is none.
std::string treacherous(const std::string& text)
{
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        if ((byte < 0x20 && byte != '\n') || byte == 0x7F) {
            return "byte " + std::to_string(byte) + " in " + text.substr(at < 20 ? 0 : at - 20, 40);
        }
    }
    for (const char* const mark : {"\xE2\x80\xAE", "\xE2\x80\xAD", "\xE2\x81\xA6", "\xE2\x80\xA8"}) {
        if (text.find(mark) != std::string::npos) {
            return "a mark of direction or an end of line";
        }
    }
    for (std::size_t at = text.find('\xC2'); at < text.size(); at = text.find('\xC2', at + 1)) {
        if (static_cast<unsigned char>(text[at + 1]) < 0xA0) {
            return "a control of two bytes";
        }
    }
    return {};
}

class Trial {
public:
    Trial(Run& run, const Bench& bench, const std::string& name) : m_run(run), m_bench(bench), m_name(name) { }

    Ran show(const std::string& line, const Words& further = {}) const
    {
        m_run.trying(line + " with " + json(m_name).dump());
        Ran ran = m_bench.run(m_bench.words("--folder @/store " + line, further));
        if (m_run.control) { // a name gets out as it is
            ran.out += m_name;
        }
        const std::string harm = treacherous(ran.out + ran.err);
        m_run.expect(harm.empty(), harm);
        m_run.expect(ran.code >= 0 && ran.code <= 2, "ends with " + std::to_string(ran.code) + ": " + ran.err);
        return ran;
    }

    void take(const Taker& taker) const
    {
        const bool isPath = taker.line == "mkdir";
        if (isPath && m_name.find('/') != std::string::npos) {
            return;
        }
        const Ran ran = show(taker.line,
                             isPath                         ? Words{'/' + m_name}
                                 : taker.file == "main.dat" ? Words{m_name, m_name}
                                                            : Words{m_name});
        const bool isRefused = taker.line.starts_with("rename") && m_name.find('/') != std::string::npos;
        const auto found = SqliteFile(m_bench.at("store/" + taker.file))
                               .value("SELECT count(*) FROM " + taker.found + dbservice::inQuotes(m_name, '\''));
        m_run.expect((ran.code == 0 && found == "1") || isRefused, "it is not in the store as it is: " + ran.err);
    }

    void expectPageIsSafe() const
    {
        const std::string page = bytesOf(m_bench.at("report.html"));
        m_run.expect(m_name.find('<') == std::string::npos || page.find(m_name) == std::string::npos,
                     "the page has it as it is");
        const std::string harm = treacherous(page);
        m_run.expect(harm.empty(), "the page has " + harm);
    }

private:
    Run& m_run;
    const Bench& m_bench;
    const std::string& m_name;
};

} // namespace

void names(Run& run)
{
    const Bench bench;
    bench.lay({});
    writeFile(bench.at("source/in/old"), "x");
    bench.make("--folder @/store init --gallery g.dat");
    bench.make("--folder @/empty init --gallery g.dat");
    bench.make("--folder @/store scan @/source");
    const Files good = bench.files();
    for (const std::string& name : hostile) {
        if (!run.takes()) {
            continue;
        }
        bench.lay(good);
        const Trial trial(run, bench, name);
        for (const Taker& taker : takers) {
            trial.take(taker);
        }
        // Where no command takes it: an id, a mime type, a path, a table and a column, and behind a zero byte.
        const std::string text = dbservice::inQuotes(name, '\'');
        SqliteFile drive(bench.at("store/DriveModuleData.dat"), SqliteFile::Collation::NameCompare);
        drive.exec("UPDATE DriveDataTable SET data1 = " + text + " || char(0) || " + text +
                   ", localAbsolutePath = " + text + ", mimeType = iif(name = 'old', " + text + ", mimeType)");
        drive.exec("INSERT INTO DriveDataTable(fileId, name, parentId, mimeType, recycled) VALUES(" + text + ", " +
                   text + " || char(0) || " + text + ", " + text + ", 'x', 1)");
        for (const std::string& line : shows) {
            trial.show(line);
            trial.show("--json " + line);
        }
        trial.show("stat", {"id:" + name});
        trial.show("ls", {"/" + name});
        trial.show("properties get --", {name});
        trial.show("find --", {name});
        trial.show("init --gallery", {name});
        trial.show("recover", {name, name});
        trial.expectPageIsSafe();
    }
}

} // namespace toolharm
