#pragma once

#include "drive/drivemarkers.h"
#include "report/drivemap.h"
#include "stores/finding.h"

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace dbservice {

/// What the page of a folder of stores shows.
struct Report {
    struct Table {
        std::string name;
        std::int64_t rows = 0;
        std::optional<std::int64_t> bytes; ///< with its indexes; nothing where SQLite cannot tell
    };
    struct Store {
        std::string file;
        std::string kind;
        std::int64_t bytes = 0;
        std::vector<Table> tables;
        std::string trouble; ///< why the tables could not be read
    };
    struct Operation {
        std::string path;
        Marker marker;
    };
    struct Transfers {
        std::string table;
        std::string status;
        std::int64_t rows = 0;
        std::int64_t bytes = 0;
    };
    /// What `check` found in a file.
    struct Checked {
        std::string file;
        Findings findings;
    };

    std::string folder;
    std::int64_t time = 0; ///< seconds since 1970-01-01 UTC
    std::string versions;
    std::vector<Store> stores;
    std::optional<DriveMap> drive;
    std::optional<std::vector<Operation>> pending; ///< nothing where it could not be read
    std::vector<Transfers> transfers;
    std::vector<Checked> checked;
};

/// Writes one HTML page that needs nothing beside it and asks no network for anything. What moves in it is a script of
/// its own, and all but the map of sizes can be read without.
void writePage(const Report& report, std::ostream& out);

} // namespace dbservice
