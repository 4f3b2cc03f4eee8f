#pragma once

#include <array>
#include <string>

namespace dbservice {

inline constexpr const char* driveFileName = "DriveModuleData.dat";
inline constexpr const char* mainFileName = "main.dat";
inline constexpr const char* shortcutFileName = "FastAccess.dat";
inline constexpr const char* transferFileName = "transmission.dat";

/// A kind of store file that the library knows.
struct StoreKind {
    const char* word;       ///< for programs and options
    const char* meaning;    ///< for people
    const wchar_t* newFile; ///< where `layDown` has its file, when the library opens its files in `newStoreFolder`
    void (*layDown)();      ///< has the library lay down all its tables
};

inline constexpr const wchar_t* newStoreFolder = L"/new";

inline constexpr std::size_t storeKindCount = 6;
const std::array<StoreKind, storeKindCount>& storeKinds();

/// Nothing where no kind has the word.
const StoreKind* storeKindByWord(const std::string& word);

} // namespace dbservice
