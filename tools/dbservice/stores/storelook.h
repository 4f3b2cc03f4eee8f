#pragma once

#include "stores/nameindex.h"
#include "stores/storeshape.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace dbservice {

class Session;

/// For a look at a file in whatever state it is: runs `work` and gives what stopped it or makes what it found
/// worthless, empty if nothing. The run itself is not spoilt by it.
std::string whatStopped(const std::filesystem::path& file, const std::function<void()>& work);

/// What a file is, without a change to it.
struct StoreLook {
    std::filesystem::path file;
    std::uintmax_t size = 0;
    std::vector<std::pair<std::filesystem::path, std::uintmax_t>> beside; ///< journals
    const StoreKind* kind = nullptr;                                      ///< null for no store
    std::vector<ShapeDifference> differences;                             ///< from the kind's shape
    std::vector<std::pair<std::string, std::int64_t>> rows;               ///< by table
    std::optional<NameIndex> names;                                       ///< of a drive store
    std::string trouble; ///< why what is missing here could not be read
};

StoreLook lookAtStore(Session& session, const std::filesystem::path& file);

/// The database files in a folder whatever they are called, and what should be one by its name, in the order of their
/// names. Throws a `Failure` when the folder cannot be read.
std::vector<std::filesystem::path> databasesIn(const std::filesystem::path& folder);

/// The files that a person means by the name of a file or a folder, or by none: then it is the store's folder. Throws a
/// `Failure` when there are none.
std::vector<std::filesystem::path> databasesMeant(const Session& session, const std::string& named);

/// The same without a folder's files that the library does not take for stores, such as copies.
std::vector<std::filesystem::path> storesMeant(const Session& session, const std::string& named);

/// The journals that lie beside a file, with their sizes.
std::vector<std::pair<std::filesystem::path, std::uintmax_t>> journalsOf(const std::filesystem::path& file);

} // namespace dbservice
