#include "gallery/galleryname.h"

#include "platform/namecompare.h"
#include "stores/session.h"

#include <string_view>

namespace dbservice {

namespace {

/// A file of that name would be another store's, on some systems at least, or what SQLite takes for its journal.
std::string refuseUnfitName(const std::string& name)
{
    if (name.empty() || name.find_first_of("/\\:") != std::string::npos || name.ends_with('.') || name.ends_with(' ')) {
        return "is not the name of a file in the store's folder";
    }
    for (const std::string_view store : storeFileNames) {
        if (platform::compareNames(name, store) == 0) {
            return "is the file of another store";
        }
    }
    for (const std::string_view ending : {"-journal", "-wal", "-shm"}) {
        if (name.ends_with(ending)) {
            return "is the name of a journal";
        }
    }
    return {};
}

} // namespace

About galleryName(bool required)
{
    return {"--gallery",
            "The gallery's file in the store's folder; the client chooses its name",
            {.required = required, .type = "NAME", .checks = {refuseInvalid, refuseUnfitName}}};
}

} // namespace dbservice
