#pragma once

#include <filesystem>
#include <random>

namespace testsupport {

/// Damages a database file, or makes it one that does harm, in one of so many ways. What the file refuses is left out.
std::size_t waysToDamage();
void damageFile(const std::filesystem::path& file, std::size_t way, std::mt19937& random);

} // namespace testsupport
