#pragma once

namespace DatabaseService {

class CellReader;

/// Takes the rows of a query.
class RowSink {
public:
    RowSink() = default;
    RowSink(const RowSink&) = delete;
    RowSink& operator=(const RowSink&) = delete;
    virtual ~RowSink() = default;

    /// Called once per row while the statement stands on it; `cells` is good for the length of the call.
    virtual void Row(CellReader& cells) = 0;
};

} // namespace DatabaseService
