#pragma once

#include "databaseservice/engine/failurelog.h"

#include <algorithm>
#include <vector>

namespace DatabaseService {

/// Writes a line in the name of `function` if there is a null pointer among `records`.
template <class Pointers> void reportNullRecords(const Pointers& records, const char* function)
{
    if (std::find(records.begin(), records.end(), nullptr) != records.end()) {
        logFailure(__LINE__, function, "a null record was left out");
    }
}

/// Copies of the records behind a container's shared pointers; null pointers are left out and reported.
template <class Pointers> auto copiesOf(const Pointers& records, const char* function)
{
    using Record = typename Pointers::value_type::element_type;
    reportNullRecords(records, function);
    std::vector<Record> copies;
    copies.reserve(records.size());
    for (const auto& record : records) {
        if (record != nullptr) {
            copies.push_back(*record);
        }
    }
    return copies;
}

} // namespace DatabaseService
