#include "databaseservice/clientconstants.h"

#include <gtest/gtest.h>
#include <string>
#include <tuple>

using namespace DatabaseService::ClientConstants;

namespace {

TEST(ClientConstants, NamesToMimeTypesAndGroups)
{
    const std::tuple<std::string, std::string_view, ExtensionGroup> cases[]{
        {"PHOTO.JpEg", "image/jpeg", ExtensionGroup::Picture},
        {"DSC_0001.NEF", "image/x-nikon-nef", ExtensionGroup::RawPhoto},
        {"first.3ds", "image/x-3ds", ExtensionGroup::Data}, // the ends of the table
        {"last.zst", "application/zstd", ExtensionGroup::Archive},
        {"\xE5\x86\x99\xE7\x9C\x9F.png", "image/png", ExtensionGroup::Picture},
        {std::string(100'000, 'x') + ".pdf", "application/pdf", ExtensionGroup::Document},
        {"a.b", unknownMimeType, ExtensionGroup::Unknown},
        {".pdf", unknownMimeType, ExtensionGroup::Unknown},
        {"trailing.", unknownMimeType, ExtensionGroup::Unknown},
        {"", unknownMimeType, ExtensionGroup::Unknown},
        {"image.jpgx", unknownMimeType, ExtensionGroup::Unknown},
        {"kelvin.m\xE2\x84\xAAv", unknownMimeType, ExtensionGroup::Unknown}, // only ASCII letters have two cases
        {"a." + std::string(100'000, 'x'), unknownMimeType, ExtensionGroup::Unknown},
        {std::string("nul.jpg\0", 8), unknownMimeType, ExtensionGroup::Unknown},
    };
    for (const auto& [name, mimeType, group] : cases) {
        SCOPED_TRACE(name.substr(0, 40));
        EXPECT_EQ(mimeTypeOf(name), mimeType);
        EXPECT_EQ(groupOf(name), group);
    }
}

static_assert(extensionsOf<ExtensionGroup::Spreadsheet>.front() == "csv" &&
              extensionsOf<ExtensionGroup::Spreadsheet>.back() == "xltx");

} // namespace
