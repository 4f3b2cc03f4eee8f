#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace testsupport {

/// Damages a database file, or makes it one that does harm, in one of so many ways. What the file refuses is left out.
std::size_t waysToDamage();
void damageFile(const std::filesystem::path& file, std::size_t way, std::mt19937& random);
/// The same with SQL, in which T stands for one of the file's tables and C for one of the table's columns.
void damageWithSql(const std::filesystem::path& file, const std::string& sql, std::mt19937& random);

} // namespace testsupport
