#pragma once

#include "stores/database.h"
#include "stores/pseudonyms.h"

#include <filesystem>

namespace dbservice {

class Session;

/// Copies a database page by page, damage and all, as it is between two changes of whoever works on it, who waits
/// meanwhile. Nothing may be at `target` yet. Throws a `Failure`.
void copyDatabase(Session& session, const std::filesystem::path& file, const std::filesystem::path& target);

/// Adds every text in a database.
void addTexts(Database& database, Pseudonyms& pseudonyms);

/// Makes a new file of a database's tables and indexes, with the rows under their numbers and a pseudonym in place of
/// each text. No byte of the texts has ever been in the new file. Throws a `Failure`, also for a virtual table, which
/// keeps texts in a form of its own.
void writeRedacted(const std::filesystem::path& file, const std::filesystem::path& target, const Pseudonyms& pseudonyms,
                   const std::string& called);

} // namespace dbservice
