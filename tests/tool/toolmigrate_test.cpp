#include "legacysample/legacysample.h"
#include "platform/paths.h"
#include "support/sqlitefile.h"
#include "support/tooltest.h"

#include <cstdint>

namespace fs = std::filesystem;
using namespace testsupport;
using nlohmann::json;

namespace {

/// One that holds no pages: rolling it back removes it and changes nothing else.
std::string hotJournalOf(const fs::path& file)
{
    std::string journal("\xd9\xd5\x05\xf9\x20\xa1\x63\xd7", 8);
    for (const auto number : {std::uintmax_t{0}, std::uintmax_t{0}, fs::file_size(file) / 4096, std::uintmax_t{512},
                              std::uintmax_t{4096}}) {
        for (const int shift : {24, 16, 8, 0}) {
            journal += static_cast<char>(number >> shift & 0xFF);
        }
    }
    journal.resize(512);
    return journal;
}

class ToolMigrate : public ToolTest {
protected:
    ToolMigrate() { legacysample::write(m_legacy, 20); }

    Ran migrate(const Arguments& options = {}) const
    {
        Arguments arguments{"migrate", platform::toUtf8(m_legacy), "--gallery", "gallery.dat"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return onStore(arguments);
    }

    fs::path m_legacy = source() / "legacy.dat";
};

} // namespace

TEST_F(ToolMigrate, DryRunChangesNoByteWhateverTheFilesAreLike)
{
    ASSERT_EQ(onStore({"init", "--gallery", "gallery.dat"}).code, 0);
    // A journal that SQLite would roll back at the first look, a table that the reader would lay down, no permission.
    writeFile(store() / "main.dat-journal", hotJournalOf(store() / "main.dat"));
    writeFile(source() / "legacy.dat-journal", hotJournalOf(m_legacy));
    for (const char* const step : {"journals", "complete", "incomplete", "read-only"}) {
        SCOPED_TRACE(step);
        if (step == std::string("complete")) {
            fs::remove(store() / "main.dat-journal");
            fs::remove(source() / "legacy.dat-journal");
        } else if (step == std::string("incomplete")) {
            SqliteFile(m_legacy).exec("DROP TABLE UBAUserLog");
        } else if (step == std::string("read-only")) {
            fs::permissions(m_legacy, fs::perms::owner_read);
        }
        const auto stored = contents(store());
        const auto read = contents(source());
        const Ran ran = migrate({"--dry-run"});
        EXPECT_EQ(ran.code, 1);
        EXPECT_TRUE(contains(ran.out, "GalleryFile                  31           29              0        0       2"));
        EXPECT_EQ(contents(store()), stored);
        EXPECT_EQ(contents(source()), read);
    }
    fs::permissions(m_legacy, fs::perms::owner_all);
    fs::remove_all(store());
    EXPECT_EQ(migrate({"--dry-run"}).code, 1);
    EXPECT_FALSE(fs::exists(store()));
}

TEST_F(ToolMigrate, TellsWhatCameOverAndWhatWasLost)
{
    const auto read = contents(source());
    const Ran ran = migrate();
    EXPECT_EQ(ran.code, 1);
    const std::pair<std::string, std::string> cases[]{
        {ran.out, "UserLogTable                  6        6              0        1       2             6\n"},
        {ran.out, "DownloadTask: no place any more for RelativePath (3 rows), TaskStatus (3 rows), "},
        {ran.out, "UBAUserLog: gets the rows of the legacy UserLog"},
        {ran.err, "warning: UserLogTable: a time that is no number ended the table (invalid stod argument)\n"},
        {ran.err, "warning: UBAUserLog: 3 rows of the legacy table of this name stay behind"},
        {ran.err, "dbservice: cannot migrate everything: 10 rows lost, see the warnings above\n"},
    };
    for (const auto& [said, text] : cases) {
        EXPECT_TRUE(contains(said, text));
    }
    EXPECT_EQ(contents(source()), read);

    const Ran second = migrate();
    EXPECT_EQ(second.code, 0);
    EXPECT_EQ(second.out.find("The store has been migrated to before (time="), 0U) << second.out;
    const json document = json::parse(migrate({"--again", "--json"}).out);
    EXPECT_TRUE(holds(document, {{"lost", 10}, {"outOfReach", 3}}));
    const json& files = document["tables"][0];
    EXPECT_TRUE(holds(files, {{"written", 0}, {"alreadyThere", 29}, {"failed", 2}, {"inStore", 29}}));
    EXPECT_EQ(files["dropped"]["ServerAlbumId"], 20);
}

TEST_F(ToolMigrate, ExitCodeTellsWhetherAnythingIsMissing)
{
    // What no client would have written goes.
    SqliteFile(m_legacy).exec("DELETE FROM GalleryFile WHERE length(UniqueId) != 32; DELETE FROM Album WHERE "
                              "AlbumId = ''; DELETE FROM AlbumLocalVersion WHERE AlbumVersion = ''; DELETE FROM "
                              "DownloadTask WHERE Id > 100; DELETE FROM UploadTask WHERE Id > 100; DELETE FROM "
                              "TransferCompleteCloudTask WHERE Id > 100; DELETE FROM UserProperties WHERE Id > 4; "
                              "DELETE FROM UserLog WHERE Id > 100");
    EXPECT_EQ(migrate().code, 1);
    const Ran whole = migrate({"--again", "--skip-uba"});
    EXPECT_EQ(whole.code, 0) << whole.err;
    EXPECT_EQ(whole.err, "");
    EXPECT_EQ(whole.out.find("UBAUserLog"), std::string::npos);

    changeStore("UPDATE UserProperties SET Value = 'dark' WHERE Key = 'Theme'", "main.dat");
    EXPECT_TRUE(contains(migrate({"--again", "--skip-uba"}).out, "1 row already there with other values, which stay"));
    EXPECT_TRUE(contains(migrate({"--again", "--skip-uba", "--replace"}).out, "UserProperties: 1 row replaced"));
    EXPECT_EQ(SqliteFile(store() / "main.dat").value("SELECT Value FROM UserProperties WHERE Key = 'Theme'"),
              "'light'");
}

TEST_F(ToolMigrate, RefusesWithTheReasonAndMakesNothing)
{
    m_legacy = source() / "cut.dat";
    writeFile(m_legacy, bytesOf(source() / "legacy.dat").substr(0, 20'000));
    EXPECT_TRUE(refused(migrate(), ": it is no database, damaged, cut short or locked"));
    m_legacy = source() / "missing.dat";
    EXPECT_TRUE(refused(migrate(), "cannot read the legacy file: there is no missing.dat in "));
    EXPECT_FALSE(fs::exists(store()));
}
