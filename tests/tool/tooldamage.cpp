// Damaged and hostile files under every command of the tool.

#include "toolharm.h"

#include "command.h"
#include "commands/commands.h"
#include "legacysample/legacysample.h"
#include "platform/paths.h"
#include "support/damagedfile.h"
#include "support/sqlitefile.h"

#include <algorithm>
#include <sstream>

using namespace testsupport;

namespace toolharm {

namespace {

const std::string drive = "store/DriveModuleData.dat";
const std::string settings = "store/main.dat";
const std::string shortcuts = "store/FastAccess.dat";
const std::string transfers = "store/transmission.dat";
const std::string gallery = "store/g.dat";
const std::string legacy = "source/legacy.dat";

/// A line, in which # stands for the damaged file.
struct Use {
    std::string file;   ///< the one that is damaged; any of a folder's where it ends in a slash
    std::string writes; ///< how the names of the files begin that may change, # among them
    std::string line;
};

std::vector<Use> allUses()
{
    const struct {
        std::string file, writes, lines;
    } groups[]{
        {drive, "",
         "ls, ls --all --sort -name, view other, recycle, recycle --expired, stat /a/1, find b, count, count /a, "
         "pending, config, query SELECT*FROM(DriveDataTable)ORDER/**/BY(name)"},
        {drive, "#",
         "scan @/source, reindex, mkdir /a/n, rename /b1 n, mv /b1 /a, rm /a/1 /b1, rm --final /a, restore /b2"},
        {settings, "", "properties list, properties get k, logs, changes, cards"},
        {settings, "#", "properties set k w, properties remove-all --yes"},
        {shortcuts, "", "shortcuts list"},
        {shortcuts, "#", "shortcuts add --title t, shortcuts remove 1"},
        {transfers, "", "transfers list"},
        {transfers, "#",
         "transfers add upload --name n, transfers add download --name n, transfers add completed --name n, "
         "transfers add task --name n --unique-id z, transfers simulate 3, reset --user --yes"},
        {gallery, "",
         "gallery counts --gallery g.dat, gallery list --gallery g.dat, gallery show id-1 --gallery g.dat"},
        {gallery, "#", "gallery import @/source --gallery g.dat, reset --gallery g.dat --yes"},
        {"store/", "", "info, check, diff @/good @/store, diff @/store @/good --summary, gallery list"},
        {"store/", "#", "check --repair, check --repair #"},
        {"store/", "saved.dat", "recover # @/saved.dat"},
        {"store/", "copy", "copy-out @/copy, copy-out @/copy --redact"},
        {"store/", "report.html", "report @/report.html"},
        {"store/", "store/", "init --gallery g.dat, reset --all --yes"},
        {legacy, "", "migrate # --gallery g.dat --dry-run"},
        {legacy, "store/main.dat store/g.dat", "migrate # --gallery g.dat"},
        {settings, "# store/g.dat", "migrate @/source/legacy.dat --gallery g.dat"},
        {gallery, "# store/main.dat", "migrate @/source/legacy.dat --gallery g.dat"},
    };
    std::vector<Use> uses;
    for (const auto& [file, writes, lines] : groups) {
        std::istringstream stream(lines);
        for (std::string line; std::getline(stream >> std::ws, line, ',');) {
            uses.push_back({file, writes, line});
        }
    }
    return uses;
}

/// Every command that does something has to be in the table.
void lookForAll(const std::vector<dbservice::Command>& commands, const std::string& before, Run& run)
{
    for (const dbservice::Command& command : commands) {
        const std::string typed = before + command.name;
        const auto tries = [&](const Use& use) { return use.line.starts_with(typed); };
        run.expect(!command.parts.empty() || std::ranges::any_of(allUses(), tries), typed);
        lookForAll(command.parts, typed + ' ', run);
    }
}

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
    ("INSERT INTO DriveDataTable(fileId, name, parentId, mimeType, recycled, needToDisplay) WITH RECURSIVE n(i) AS "
     "(SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 3000) SELECT i, i, i - 1, 'x', 0, 1 FROM n"),
    "BEGIN; " + repeated(1000, "CREATE TABLE more", "(x); ") + "COMMIT",
    "DROP TABLE T; CREATE TABLE T(C" + repeated(1990, ", more", " TEXT DEFAULT 'x'") +
        "); INSERT INTO T(C) VALUES('k')",
    "ALTER TABLE T ADD COLUMN made GENERATED ALWAYS AS (hex(zeroblob(400000000))) VIRTUAL",
    ("CREATE TABLE \"it's \"\"x\x1b[31m\"(\"a\nb\" DEFAULT 'x', \"c\"\"\"); INSERT INTO \"it's \"\"x\x1b[31m\" "
     "VALUES(1, 2)"),
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
    bench.make("--folder @/store init --gallery g.dat");
    for (const std::string& file : {drive, settings, gallery}) {
        SqliteFile(bench.at(file), SqliteFile::Collation::NameCompare).fill(1);
    }
    SqliteFile(bench.at(drive), SqliteFile::Collation::NameCompare).exec("DELETE FROM DriveDataTable");
    for (const std::string line : {"scan @/source", "rm /b2", "properties set k v", "shortcuts add --title t",
                                   "transfers add upload --name n", "transfers add download --name n",
                                   "transfers add completed --name n", "transfers add task --name n --unique-id q"}) {
        bench.make("--folder @/store " + line);
    }
    SqliteFile(bench.at(drive), SqliteFile::Collation::NameCompare)
        .exec("UPDATE DriveDataTable SET data1 = printf('%.*c', 9000, 'x') WHERE name = 'b1'");
    legacysample::write(bench.at(legacy), 20);
    std::filesystem::copy(bench.at("store"), bench.at("good"));
    std::filesystem::remove_all(bench.at("cache"));
    return bench.files();
}

} // namespace

Words linesThatShow()
{
    Words lines{"report --force @/report.html"};
    for (const Use& use : allUses()) {
        if (use.writes.empty() && use.line.find('#') == std::string::npos) {
            lines.push_back(use.line);
        }
    }
    return lines;
}

void damage(Run& run)
{
    run.trying("a command that no line tries", 0);
    lookForAll(dbservice::allCommands(), "", run);
    const std::vector<Use> uses = allUses();
    const Bench bench;
    const Files good = layStores(bench);
    int failed = 0;
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
        failed += ran.code != 0;
        run.expect(ran.code >= 0 && ran.code <= 2, "ends with " + std::to_string(ran.code) + ": " + ran.err);
        run.expect(ran.code == 0 || !(ran.out + ran.err).empty(), "fails without a word");
        const Words mayChange = bench.words("cache/ " + use.writes, file);
        for (const auto& [name, bytes] : differences(before, bench.files())) {
            run.expect(std::ranges::any_of(
                           mayChange, [&name = name](const std::string& begin) { return name.starts_with(begin); }),
                       name + " has changed");
        }
    }
    Run::tell(std::to_string(failed) + " commands failed");
}

} // namespace toolharm
