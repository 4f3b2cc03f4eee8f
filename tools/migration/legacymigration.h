#pragma once

#include "databaseservice/integers.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Carries the rows of the earlier client generation's file over into the gallery file and `main.dat`. What becomes of
/// each column, and why, is in `docs/migration.md`.
///
/// Threads: one run at a time, and no other use of the legacy file's readers meanwhile. The stores may be in use, but
/// rows that others add or delete during a run spoil its counts.
/// Failure: an `Error` before anything was written; after that everything is in the report.
namespace migration {

using DatabaseService::int64;

struct Plan {
    /// A whole path. The readers lay down tables that the file lacks; whoever minds gives them a copy.
    std::filesystem::path legacyFile;
    /// Where the library has the stores: `main.dat` and the gallery's file in the folder that `GlobalParamWrapper`
    /// names. A dry run only looks there, so copies will do.
    std::filesystem::path mainFile;
    std::filesystem::path galleryFile;
    /// Rows that the stores hold under the same key with other values: without it they stay as they are.
    bool replace = false;
    /// Runs even if the store remembers a run.
    bool again = false;
    /// Leaves `UBAUserLog` alone, which would get the rows of the legacy `UserLog`.
    bool skipUba = false;
    /// Reads and compares everything and writes nothing.
    bool dryRun = false;
};

/// What became of one table. Every row that was read is in exactly one of `written`, `alreadyThere` and `failed`.
struct TableReport {
    std::string_view legacyTable;
    std::string_view table; ///< in the store

    int64 inLegacy = 0;     ///< rows that the legacy file counts; as many as were read where it cannot count them
    int64 read = 0;         ///< fewer than `inLegacy` when the reader stopped early
    int64 written = 0;      ///< in a dry run: would be
    int64 alreadyThere = 0; ///< the store holds the row
    int64 kept = 0;         ///< of these, rows that the store holds with other values
    int64 replaced = 0;     ///< of the written, rows that took the place of such rows
    int64 renumbered = 0;   ///< of the written, rows whose id another row had
    int64 failed = 0;       ///< share their key with a later row, or were refused by the store
    int64 inStore = 0;      ///< rows in the store's table after the run; -1 when they cannot be counted

    int64 clamped = 0;    ///< rows read with a number beyond what the store's record holds
    int64 notNumbers = 0; ///< rows read with a text in place of a number
    int64 mended = 0;     ///< rows read whose `Sdsmtime` the reader cannot give, and that were set right
    /// Columns that the store does not have, and how many of the rows read hold something there.
    std::vector<std::pair<std::string_view, int64>> dropped;

    std::string trouble; ///< why the table did not come over whole, for a person; empty when it did

    int64 lost() const { return inLegacy - read + failed; }
};

struct Report {
    /// What the store remembers of an earlier run, if that is why nothing was done.
    std::optional<std::string> earlierRun;
    std::vector<TableReport> tables;
    /// Rows of the legacy `UBAUserLog`, which no reader reaches.
    int64 outOfReach = 0;
    /// Why the run ended before its end; empty when it came there. Such a run is not remembered.
    std::string stopped;
    bool remembered = false;

    /// Rows of the legacy file that are not in the stores, the ones out of reach included unless they were not wanted.
    int64 lost = 0;

    /// Whether it did all that could be wanted; false also where nobody knows how many rows were lost.
    bool isWhole() const;
};

/// Why nothing was done, as the end of a sentence: "it is not a file".
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// `done` goes from 0 to 1; `table` is the one at work.
using Progress = std::function<void(double done, std::string_view table)>;

/// The setting in `main.dat` that remembers a run.
inline constexpr const wchar_t* rememberedKey = L"LegacyMigration";

/// Throws an `Error` unless this is a file of the earlier client generation. Changes nothing.
void requireLegacyFile(const std::filesystem::path& file);

/// Whether the readers find every table in the file, so that reading changes no byte of it.
bool isComplete(const std::filesystem::path& file);

Report run(const Plan& plan, const Progress& progress = {});

} // namespace migration
