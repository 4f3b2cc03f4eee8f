#pragma once

#include <stdexcept>
#include <string>

namespace dbservice {

/// Why a command cannot go on, as the person reads it after the program's name: "cannot read the store: ...".
class Failure : public std::runtime_error {
public:
    explicit Failure(const std::string& reason) : std::runtime_error(reason) { }
};

} // namespace dbservice
