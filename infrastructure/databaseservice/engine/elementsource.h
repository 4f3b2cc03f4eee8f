#pragma once

namespace DatabaseService {

class ParameterWriter;

/// Feeds a statement with values, one execution after another.
class ElementSource {
public:
    ElementSource() = default;
    ElementSource(const ElementSource&) = delete;
    ElementSource& operator=(const ElementSource&) = delete;
    virtual ~ElementSource() = default;

    /// Moves to the next element, at first to the first one; false behind the last.
    virtual bool Advance() = 0;

    /// Binds the current element. Stops at the first value that `parameters` refuses and returns false.
    /// Values that are not copied stay where they are until the next `Advance`.
    virtual bool Bind(ParameterWriter& parameters) = 0;
};

} // namespace DatabaseService
