// Damaged and hostile files under every command of the tool.

#include "toolharm.h"

#include "legacysample/legacysample.h"
#include "platform/paths.h"
#include "support/damagedfile.h"
#include "support/sqlitefile.h"

#include <algorithm>

using namespace testsupport;

namespace toolharm {

namespace {

struct Use {
    std::string file;     ///< the one that is damaged; any of a folder's where it ends in a slash
    std::string line;     ///< in which # stands for it
    std::string writes{}; ///< how the names of the files begin that may change, # among them
};

const std::string drive = "store/DriveModuleData.dat";
const std::string settings = "store/main.dat";
const std::string shortcuts = "store/FastAccess.dat";
const std::string transfers = "store/transmission.dat";
const std::string gallery = "store/g.dat";
const std::string query = "query SELECT*FROM(DriveDataTable)ORDER/**/BY(name)";

const std::vector<Use> uses{
    {drive, "ls"},
    {drive, "ls --all --sort -name"},
    {drive, "view other"},
    {drive, "recycle"},
    {drive, "recycle --expired"},
    {drive, "stat /a/1"},
    {drive, "find b"},
    {drive, "count"},
    {drive, "count /a"},
    {drive, "pending"},
    {drive, "config"},
    {drive, query},
    {drive, "scan @/source", "#"},
    {drive, "reindex", "#"},
    {drive, "mkdir /a/n", "#"},
    {drive, "rename /b1 n", "#"},
    {drive, "mv /b1 /a", "#"},
    {drive, "rm /a/1 /b1", "#"},
    {drive, "rm --final /a", "#"},
    {drive, "restore /b2", "#"},
    {settings, "properties list"},
    {settings, "properties get k"},
    {settings, "properties set k w", "#"},
    {settings, "properties remove-all --yes", "#"},
    {settings, "logs"},
    {settings, "changes"},
    {settings, "cards"},
    {shortcuts, "shortcuts list"},
    {shortcuts, "shortcuts add --title t", "#"},
    {shortcuts, "shortcuts remove 1", "#"},
    {transfers, "transfers list"},
    {transfers, "transfers add upload --name n", "#"},
    {transfers, "transfers add download --name n", "#"},
    {transfers, "transfers add completed --name n", "#"},
    {transfers, "transfers add task --name n --unique-id z", "#"},
    {transfers, "transfers simulate 3", "#"},
    {transfers, "reset --user --yes", "#"},
    {gallery, "gallery counts --gallery g.dat"},
    {gallery, "gallery list --gallery g.dat"},
    {gallery, "gallery show u --gallery g.dat"},
    {gallery, "gallery import @/source --gallery g.dat", "#"},
    {gallery, "reset --gallery g.dat --yes", "#"},
    {"store/", "info"},
    {"store/", "check"},
    {"store/", "check --repair", "#"},
    {"store/", "check --repair #", "#"},
    {"store/", "recover # @/saved.dat", "saved.dat"},
    {"store/", "copy-out @/copy", "copy"},
    {"store/", "copy-out @/copy --redact", "copy"},
    {"store/", "diff @/good @/store"},
    {"store/", "diff @/store @/good --summary"},
    {"store/", "report @/report.html", "report.html"},
    {"store/", "gallery list"},
    {"store/", "init --gallery g.dat", "store/"},
    {"store/", "reset --all --yes", "store/"},
    {"source/legacy.dat", "migrate # --gallery g.dat", "store/main.dat store/g.dat"},
    {"source/legacy.dat", "migrate # --gallery g.dat --dry-run"},
    {settings, "migrate @/source/legacy.dat --gallery g.dat", "store/main.dat store/g.dat"},
    {gallery, "migrate @/source/legacy.dat --gallery g.dat", "store/main.dat store/g.dat"},
};

std::string repeated(int times, const std::string& before, const std::string& after)
{
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += before + std::to_string(i) + after;
    }
    return all;
}

std::string endless(const std::string& event)
{
    return "CREATE TRIGGER harm " + event + " ON T BEGIN SELECT max(t0.name) FROM sqlite_master AS t" +
        repeated(14, "", ", sqlite_master AS u") + "; END";
}

/// What is only for the tool to bear: the library has readers that a circle keeps for ever.
const std::string hostile[]{
    "UPDATE DriveDataTable SET parentId = fileId",
    "UPDATE DriveDataTable SET parentId = (SELECT fileId FROM DriveDataTable WHERE name = '1') WHERE name = 'a'",
    "INSERT INTO DriveDataTable(fileId, name, parentId, mimeType, recycled, needToDisplay) WITH RECURSIVE n(i) AS "
    "(SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 3000) SELECT i, i, i - 1, 'x', 0, 1 FROM n",
    "BEGIN; " + repeated(1000, "CREATE TABLE more", "(x); ") + "COMMIT",
    "DROP TABLE T; CREATE TABLE T(C" + repeated(1990, ", more", " TEXT DEFAULT 'x'") +
        "); INSERT INTO T(C) VALUES('k')",
    "ALTER TABLE T ADD COLUMN made GENERATED ALWAYS AS (hex(zeroblob(400000000))) VIRTUAL",
    "CREATE TABLE \"it's \"\"x\x1b[31m\"(\"a\nb\" DEFAULT 'x', \"c\"\"\"); INSERT INTO \"it's \"\"x\x1b[31m\" "
    "VALUES(1, 2)",
    "CREATE TRIGGER harm AFTER UPDATE ON T BEGIN DELETE FROM T; END",
    "CREATE TRIGGER harm AFTER DELETE ON T BEGIN INSERT INTO T(C) VALUES('again'); END",
    "CREATE TRIGGER harm BEFORE INSERT ON T BEGIN SELECT RAISE(IGNORE); END",
    endless("AFTER INSERT"),
    endless("AFTER UPDATE"),
    endless("BEFORE DELETE"),
};

Files layStores(const Bench& bench)
{
    bench.lay({});
    for (const std::string name : {"a/1", "a/2", "b1", "b2"}) {
        writeFile(bench.at("source/" + name), "x");
    }
    for (const std::string line :
         {"init --gallery g.dat", "scan @/source", "rm /b2", "properties set k v", "shortcuts add --title t",
          "transfers add upload --name n", "transfers add download --name n", "transfers add completed --name n",
          "transfers add task --name n --unique-id q"}) {
        bench.make("--folder @/store " + line);
    }
    SqliteFile(bench.at(drive)).exec("UPDATE DriveDataTable SET data1 = printf('%.*c', 9000, 'x') WHERE name = 'b1'");
    for (const std::string& file : {drive, settings, gallery}) {
        SqliteFile store(bench.at(file), SqliteFile::Collation::NameCompare);
        for (const auto& table : store.query("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE "
                                             "'sqlite%' AND name <> 'DriveDataTable'")) {
            std::string values;
            for (const auto& column : store.query("PRAGMA table_info(" + table[0] + ")")) {
                values += (values.empty() ? "" : ", ") + (column[2] == "'TEXT'" ? "'u'" : column[0]);
            }
            store.exec("INSERT OR IGNORE INTO " + table[0] + " VALUES(" + values + ")");
        }
    }
    legacysample::write(bench.at("source/legacy.dat"), 20);
    Files files = bench.files();
    for (const auto& [name, bytes] : bench.files()) {
        if (name.starts_with("store/")) {
            files["good" + name.substr(5)] = bytes;
        }
    }
    std::erase_if(files, [](const auto& file) { return file.first.starts_with("cache/"); });
    return files;
}

std::string replaced(std::string text, const std::string& file)
{
    for (std::size_t at = text.find('#'); at != std::string::npos; at = text.find('#')) {
        text.replace(at, 1, file);
    }
    return text;
}

bool mayChange(const std::string& name, const std::string& writes)
{
    std::istringstream allowed("cache/ " + writes);
    return std::any_of(std::istream_iterator<std::string>(allowed), {},
                       [&](const std::string& begin) { return name.starts_with(begin); });
}

} // namespace

std::vector<std::string> linesThatShow()
{
    std::vector<std::string> lines;
    for (const Use& use : uses) {
        if (use.writes.empty() && use.line.find("#") == std::string::npos) {
            lines.push_back(use.line);
        }
    }
    lines.emplace_back("report --force @/report.html");
    return lines;
}

void damage(Run& run)
{
    run.trying("a command that no line tries", 0);
    for (const std::string& command : commandsOfTool()) {
        run.expect(std::ranges::any_of(uses, [&](const Use& use) { return use.line.starts_with(command); }), command);
    }
    const Bench bench;
    const Files good = layStores(bench);
    std::map<int, int> codes;
    for (int left = run.part(6'000); left > 0; --left) {
        const Use& use = uses[run.random() % uses.size()];
        std::string file = use.file;
        if (file.ends_with('/')) {
            const std::string* const any[]{&drive, &settings, &shortcuts, &transfers, &gallery};
            file = *any[run.random() % std::size(any)];
        }
        const auto way = static_cast<std::size_t>(run.random()) % (waysToDamage() + std::size(hostile));
        run.trying(use.line + " on damage " + std::to_string(way) + " to " + file + ", " + std::to_string(left) +
                   " cases before the end");
        bench.lay(good);
        if (way < waysToDamage()) {
            damageFile(bench.at(file), way, run.random);
        } else {
            damageWithSql(bench.at(file), hostile[way - waysToDamage()], run.random);
        }
        const Files before = bench.files();
        const Ran ran =
            bench.run(bench.words("--folder @/store --wait 0.3 " + use.line, platform::toUtf8(bench.at(file))));
        if (run.control) { // more than the command's file is written to
            writeFile(bench.at("source/b1"), "harmed");
        }
        ++codes[ran.code];
        run.expect(ran.code >= 0 && ran.code <= 2, "ends with " + std::to_string(ran.code) + ": " + ran.err);
        run.expect(ran.code == 0 || !(ran.out + ran.err).empty(), "fails without a word");
        const Files after = bench.files();
        for (const Files* const some : {&before, &after}) {
            for (const auto& [name, bytes] : *some) {
                const auto of = [&, &key = name](const Files& files) {
                    const auto found = files.find(key);
                    return found == files.end() ? "none" : found->second;
                };
                run.expect(of(before) == of(after) || mayChange(name, replaced(use.writes, file)),
                           name + " has changed");
            }
        }
    }
    for (const auto& [code, count] : codes) {
        Run::tell(std::to_string(count) + " ended with " + std::to_string(code));
    }
}

} // namespace toolharm
