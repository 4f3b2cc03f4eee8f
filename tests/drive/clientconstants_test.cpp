#include "databaseservice/clientconstants.h"

#include <gtest/gtest.h>
#include <string>

using namespace DatabaseService::ClientConstants;

namespace {

TEST(ClientConstants, NamesToMimeTypesAndGroups)
{
    struct Case {
        std::string name;
        std::string_view mimeType;
        ExtensionGroup group;
    };
    const Case cases[]{
        {"photo.jpg", "image/jpeg", ExtensionGroup::Picture},
        {"PHOTO.JpEg", "image/jpeg", ExtensionGroup::Picture},
        {"DSC_0001.NEF", "image/x-nikon-nef", ExtensionGroup::RawPhoto},
        {"first.3ds", "image/x-3ds", ExtensionGroup::Data}, // the ends of the table
        {"last.zst", "application/zstd", ExtensionGroup::Archive},
        {"backup.tar.gz", "application/gzip", ExtensionGroup::Archive},
        {"\xE5\x86\x99\xE7\x9C\x9F.png", "image/png", ExtensionGroup::Picture},
        {std::string(100'000, 'x') + ".pdf", "application/pdf", ExtensionGroup::Document},
        {"a.b", unknownMimeType, ExtensionGroup::Unknown},
        {"pdf", unknownMimeType, ExtensionGroup::Unknown},
        {".pdf", unknownMimeType, ExtensionGroup::Unknown},
        {"trailing.", unknownMimeType, ExtensionGroup::Unknown},
        {"", unknownMimeType, ExtensionGroup::Unknown},
        {".", unknownMimeType, ExtensionGroup::Unknown},
        {"image.jpgx", unknownMimeType, ExtensionGroup::Unknown},
        {"image.jp", unknownMimeType, ExtensionGroup::Unknown},
        {"kelvin.m\xE2\x84\xAAv", unknownMimeType, ExtensionGroup::Unknown}, // only ASCII letters have two cases
        {"a." + std::string(100'000, 'x'), unknownMimeType, ExtensionGroup::Unknown},
        {std::string("nul.jpg\0", 8), unknownMimeType, ExtensionGroup::Unknown},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name.substr(0, 40));
        EXPECT_EQ(mimeTypeOf(c.name), c.mimeType);
        EXPECT_EQ(groupOf(c.name), c.group);
    }
}

static_assert(extensionsOf<ExtensionGroup::Spreadsheet>.front() == "csv" &&
              extensionsOf<ExtensionGroup::Spreadsheet>.back() == "xltx");

// What no lookup could find, and what contradicts itself.
TEST(ClientConstants, TheTableIsConsistent)
{
    for (const KnownExtension& known : knownExtensions) {
        SCOPED_TRACE(known.extension);
        const std::string name = "name." + std::string(known.extension);
        EXPECT_EQ(findExtension(name), &known);
        EXPECT_NE(known.group, ExtensionGroup::Unknown);
        EXPECT_NE(known.mimeType, folderMimeType);
        const std::string_view kind = known.mimeType.substr(0, known.mimeType.find('/'));
        EXPECT_TRUE(kind != "audio" || known.group == ExtensionGroup::Audio);
        EXPECT_TRUE(kind != "font" || known.group == ExtensionGroup::Font);
        EXPECT_NE(iconPathOf(known.group), unknownIconPath) << "each group has an icon";
    }
}

} // namespace
