#include "platform/paths.h"
#include "support/sqlitefile.h"
#include "support/tooltest.h"

#include <string>
#include <vector>

namespace fs = std::filesystem;
using namespace testsupport;
using nlohmann::json;

namespace {

constexpr std::size_t pageSize = 4096;

/// What is asked of a file that somebody has sent: which it is, whether it is sound, what can be saved of it.
class ToolInspect : public ToolTest {
protected:
    ToolInspect()
    {
        for (const char* name : {"a/1", "a/2", "b1", "b2"}) {
            writeFile(source() / name, "x");
        }
        EXPECT_EQ(onStore({"init", "--gallery", "g.dat"}).code, 0);
        EXPECT_EQ(scan().code, 0);
    }

    std::string path(const std::string& name) const { return platform::toUtf8(m_folder.path() / name); }
    /// A copy of a store's file under a name that tells nothing of it.
    std::string copy(const std::string& file, const std::string& name = "copy") const
    {
        fs::copy_file(store() / file, m_folder.path() / name, fs::copy_options::overwrite_existing);
        return path(name);
    }
    void zero(const std::string& file, std::size_t page) const
    {
        writeFile(utf8Path(file), bytesOf(utf8Path(file)).replace((page - 1) * pageSize, pageSize, pageSize, '\0'));
    }
    json lineOf(const Arguments& arguments) const
    {
        const Ran ran = run(arguments);
        return json::parse(ran.out.substr(0, ran.out.find('\n')));
    }
};

TEST_F(ToolInspect, TheTablesTellWhichFileItIs)
{
    struct Case {
        std::string file, change, kind, schema;
    };
    const std::vector<Case> cases{
        {"DriveModuleData.dat", "", "drive", ""},
        {"main.dat", "ALTER TABLE T_CloudFileTable DROP COLUMN imageRotate", "main", "lacks the column imageRotate"},
        {"g.dat", "ALTER TABLE Album ADD COLUMN more", "gallery", "has a column more, more"},
        {"FastAccess.dat", "CREATE TABLE other(x)", "shortcuts", "other is none of the library's"},
        {"transmission.dat", "", "transfers", "there is no table TransferTask"},
        {"g.dat",
         "DROP TABLE Album; DROP TABLE AlbumLocalVersion; DROP TABLE UploadTask; CREATE TABLE UserLog(Id, Time, "
         "Action, UserId, DevId, Code, Info, Extend, TraceId, UseTime, StartTime, Model, RomVersion, AppVersion); "
         "ALTER TABLE GalleryFile DROP COLUMN ContinuousNo; ALTER TABLE GalleryFile ADD COLUMN CoverUniqueId",
         "legacy", "there is no table Album"},
        {"FastAccess.dat", "DROP TABLE FastAccess; CREATE TABLE Album(AlbumId, Title, ArtistId)", "", ""},
    };
    for (const auto& [file, change, kind, schema] : cases) {
        SCOPED_TRACE(kind + " " + change);
        const std::string renamed = copy(file);
        SqliteFile(utf8Path(renamed)).exec(change);
        const std::string before = bytesOf(utf8Path(renamed));
        const json found = lineOf({"--json", "info", renamed});
        EXPECT_EQ(found["kind"], kind.empty() ? json() : json(kind));
        EXPECT_EQ(found["nameIndex"], kind == "drive" ? json("agrees") : json());
        EXPECT_TRUE(contains(found["schema"].dump(), schema));
        EXPECT_TRUE(bytesOf(utf8Path(renamed)) == before);
    }
    EXPECT_EQ(rows({"info"}).size(), 5U);
    EXPECT_TRUE(refused(run({"info", path("nowhere")}), "there is no such file or folder"));
    writeFile(store() / "main.dat", "this is no database, but long enough for one");
    fs::resize_file(storeFile(), 2 * pageSize);
    const Ran ran = onStore({"info"});
    EXPECT_EQ(ran.code, 1);
    EXPECT_TRUE(contains(ran.out, "is not a database") && contains(ran.out, "cut short, 8,192 of "));
    EXPECT_TRUE(contains(ran.out, "shortcut list")) << "the others are shown all the same";
}

} // namespace
