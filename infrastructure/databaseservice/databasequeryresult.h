#pragma once

#include "databaseservice/databaseparameter.h"
#include "databaseservice/export.h"
#include "databaseservice/integers.h"

#include <string>

namespace DatabaseService {

/// One row: cells read front to back, in the order of the `SELECT` list.
///
/// Threads: confined to one. Each getter reads the current cell, converts it if it is of the other kind, and moves
/// past it. Past the last cell a getter gives an empty value. A row can hold fewer cells than the list has columns:
/// a blob, and a NULL whose column is not declared exactly INTEGER, TEXT or VARCHAR (an expression counts as
/// INTEGER), leaves no cell.
class DATABASESERVICE_EXPORT DatabaseQueryResult : public DatabaseParameter<std::wstring, int64> {
public:
    /// An integer reads as its decimal digits.
    std::wstring GetWstring();
    /// The same as UTF-8.
    std::string GetString();
    /// Text reads as the number at its front, 0 without one; what is beyond 64 bits is cut to the nearest limit.
    int64 GetInt();
    /// Whether `GetInt` is not 0.
    bool GetBoolean();
};

} // namespace DatabaseService
