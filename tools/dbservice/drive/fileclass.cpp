#include "drive/fileclass.h"

namespace dbservice {

using DatabaseService::ClientConstants::ExtensionGroup;

FileClass classOf(ExtensionGroup group) noexcept
{
    switch (group) {
    case ExtensionGroup::Picture:
    case ExtensionGroup::RawPhoto:
        return FileClass::Picture;
    case ExtensionGroup::Video:
        return FileClass::Video;
    case ExtensionGroup::Audio:
        return FileClass::Audio;
    case ExtensionGroup::Document:
    case ExtensionGroup::Spreadsheet:
    case ExtensionGroup::Presentation:
        return FileClass::Document;
    case ExtensionGroup::Unknown:
    case ExtensionGroup::Archive:
    case ExtensionGroup::Code:
    case ExtensionGroup::Font:
    case ExtensionGroup::Data:
    case ExtensionGroup::System:
        break;
    }
    return FileClass::Other;
}

std::int32_t extensionSign(ExtensionGroup group) noexcept
{
    return static_cast<std::int32_t>(group);
}

} // namespace dbservice
