#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

/// Files of the earlier client generation, made up, to try the migration on.
namespace legacysample {

enum class Content {
    Clean, ///< ordinary rows that all come over
    Ugly   ///< with every ugly row that we know of, the times of `UserLog` that are no numbers among them
};

/// Writes a new file, in place of one that is there, with so many ordinary rows in `GalleryFile` and fewer in the other
/// tables, always the same ones. Throws `std::runtime_error`.
void write(const std::filesystem::path& file, std::int64_t rows, Content content = Content::Ugly);

/// Puts rows into `main.dat` and the gallery's file that have the keys of some of the sample's and say something else.
/// The library has to open them in the same folder.
void putInTheWay(const std::wstring& galleryName);

} // namespace legacysample
