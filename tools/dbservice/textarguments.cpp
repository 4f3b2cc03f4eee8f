#include "textarguments.h"

#include "platform/namecompare.h"
#include "platform/text.h"
#include "stores/session.h"

#include <CLI/CLI.hpp>

#include <string_view>

namespace dbservice {

namespace {

std::string refuseInvalid(const std::string& text)
{
    return platform::isUtf8(text) ? "" : "is not UTF-8";
}

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

CLI::Option* addText(CLI::App& command, const std::string& name, std::string& text, const std::string& description)
{
    return command.add_option(name, text, description)->check(refuseInvalid);
}

CLI::Option* addGalleryName(CLI::App& command, std::string& name)
{
    return addText(command, "--gallery", name, "The gallery's file in the store's folder; the client chooses its name")
        ->check(refuseUnfitName)
        ->type_name("NAME");
}

} // namespace dbservice
