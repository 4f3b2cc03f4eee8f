#include "support/tooltest.h"

using namespace testsupport;
using nlohmann::json;

namespace {

class ToolReport : public ToolTest {
protected:
    std::filesystem::path page() const { return m_folder.path() / "report.html"; }
    std::string readPage() const { return bytesOf(page()); }
    /// The list that the map is drawn from.
    json entries() const
    {
        const std::string text = readPage();
        const std::string begin = "id=\"entries\">";
        const std::size_t at = text.find(begin) + begin.size();
        return json::parse(text.substr(at, text.find("</script>", at) - at));
    }
};

TEST_F(ToolReport, ShowsFoldersWithTheSizesBelowThemAndEscapesNames)
{
    writeFile(source() / "large" / "deep" / "a.bin", std::string(3000, 'x'));
    writeFile(source() / "small" / "c&.txt", std::string(9, 'x'));
    ASSERT_EQ(scan().code, 0);
    ASSERT_EQ(onStore({"mkdir", "/<i>"}).code, 0);
    changeStore("UPDATE DriveDataTable SET parentId = fileId || 'x' WHERE name = 'small';"
                "UPDATE DriveDataTable SET name = '</script><b>' WHERE name = '<i>'");
    const auto before = contents(store());
    ASSERT_EQ(onStore({"report", page().string()}).code, 0);
    EXPECT_EQ(contents(store()), before);

    const json map = entries();
    EXPECT_EQ(map["bytes"][0], 3009) << "what hangs on no folder counts, too";
    std::map<std::string, int> sizes;
    for (std::size_t i = 0; i < map["name"].size(); ++i) {
        sizes[map["name"][i]] = map["bytes"][i];
    }
    EXPECT_EQ(sizes["deep"], 3000);
    EXPECT_EQ(sizes["small"], 9);
    EXPECT_EQ(sizes.count("</script><b>"), 1U);
    EXPECT_EQ(readPage().find("<b>&"), std::string::npos);
    EXPECT_EQ(readPage().find("</script><b>"), std::string::npos);
    EXPECT_TRUE(contains(readPage(), "&lt;/script&gt;&lt;b&gt;")) << "in the list of what waits";
}

TEST_F(ToolReport, NeverTakesTheNameOfAFileUnasked)
{
    ASSERT_EQ(onStore({"init"}).code, 0);
    writeFile(page(), "mine");
    EXPECT_TRUE(refused(onStore({"report", page().string()}), "it is there already; --force replaces it"));
    EXPECT_EQ(readPage(), "mine");
    EXPECT_EQ(onStore({"report", "--force", page().string()}).code, 0);
    EXPECT_TRUE(contains(readPage(), "DriveDataTable"));
    EXPECT_TRUE(refused(onStore({"report", (m_folder.path() / "none" / "x.html").string()}), "cannot write"));
}

} // namespace
