#pragma once

#include "databaseservice/storefiles.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace dbservice {

/// The library's name of a store file as narrow text: all of them are ASCII.
template <const auto& wide>
inline constexpr auto narrow = [] {
    constexpr std::wstring_view name = wide;
    std::array<char, name.size() + 1> text{};
    std::transform(name.begin(), name.end(), text.begin(), [](wchar_t letter) { return static_cast<char>(letter); });
    return text;
}();
inline constexpr const char* driveFileName = narrow<DatabaseService::driveStoreFile>.data();
inline constexpr const char* mainFileName = narrow<DatabaseService::mainStoreFile>.data();
inline constexpr const char* shortcutFileName = narrow<DatabaseService::shortcutStoreFile>.data();
inline constexpr const char* transferFileName = narrow<DatabaseService::transferStoreFile>.data();

/// A kind of store file that the library knows.
struct StoreKind {
    const char* word;       ///< for programs
    const char* meaning;    ///< for people
    const wchar_t* newFile; ///< where `layDown` has its file, when the library opens its files in `newStoreFolder`
    void (*layDown)();      ///< has the library lay down all its tables
};

inline constexpr const wchar_t* newStoreFolder = L"/new";

inline constexpr std::size_t storeKindCount = 6;
const std::array<StoreKind, storeKindCount>& storeKinds();

} // namespace dbservice
