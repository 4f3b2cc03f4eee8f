#pragma once

#include <string>
#include <vector>

namespace dbservice {

/// What a check of a store's file has met.
struct Finding {
    enum class Severity {
        Error,   ///< the library reads or writes something else than was meant, or not at all
        Warning, ///< rows that nobody finds, or work that is slow or waits for ever
        Note     ///< as it may be, and good to know
    };

    Severity severity;
    std::string table;     ///< empty for the whole file
    std::string key;       ///< of the row, empty for the whole table
    std::string what;      ///< what it is and what it means
    bool mendable = false; ///< whether indexes that are made anew mend it
};

using Findings = std::vector<Finding>;

constexpr const char* word(Finding::Severity severity)
{
    switch (severity) {
    case Finding::Severity::Error:
        return "error";
    case Finding::Severity::Warning:
        return "warning";
    case Finding::Severity::Note:
        break;
    }
    return "note";
}

} // namespace dbservice
