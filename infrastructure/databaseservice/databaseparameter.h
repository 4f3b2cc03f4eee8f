#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace DatabaseService {

/// A sequence of strings and integers in the order of their insertion, walked front to back:
/// `Reset`, then while `HasNext`: `IsInt`, `GetValue`, `Next`. `S` holds a string element, `I` an integer element.
///
/// Threads: confined to one. A copy takes the cursor along and goes on where its source stood; a moved-from
/// sequence is empty. Past its last element a sequence has no value: `IsInt` and both `GetValue` are false there.
template <class S, class I> class DatabaseParameter {
public:
    DatabaseParameter() = default;
    DatabaseParameter(const DatabaseParameter&) = default;
    DatabaseParameter& operator=(const DatabaseParameter&) = default;
    ~DatabaseParameter() = default;

    /// Leaves the source empty.
    DatabaseParameter(DatabaseParameter&& other) noexcept { swap(other); }

    /// Leaves the source empty, unless it is this.
    DatabaseParameter& operator=(DatabaseParameter&& other) noexcept
    {
        if (this != &other) {
            DatabaseParameter taken(std::move(other));
            swap(taken);
        }
        return *this;
    }

    /// Appends a string.
    void Insert(const S& value)
    {
        m_strings.push_back(value);
        m_kinds.push_back(true);
    }

    /// Appends an integer.
    void Insert(const I& value)
    {
        m_integers.push_back(value);
        m_kinds.push_back(false);
    }

    /// Back to the first element; the contents stay.
    void Reset()
    {
        m_position = 0;
        m_stringPosition = 0;
        m_integerPosition = 0;
    }

    /// Whether there is a current element.
    bool HasNext() const { return static_cast<std::size_t>(m_position) != m_kinds.size(); }

    /// Moves past the current element; false when there is none.
    bool Next()
    {
        if (!HasNext()) {
            return false;
        }
        ++(IsInt() ? m_integerPosition : m_stringPosition);
        ++m_position;
        return true;
    }

    /// Whether the current element is an integer.
    bool IsInt() const { return HasNext() && !m_kinds[static_cast<std::size_t>(m_position)]; }

    /// Copies the current element without moving. False, and `value` left alone, when it is of the other kind.
    bool GetValue(S& value) const
    {
        if (!HasNext() || IsInt()) {
            return false;
        }
        value = m_strings[static_cast<std::size_t>(m_stringPosition)];
        return true;
    }

    /// The same for an integer.
    bool GetValue(I& value) const
    {
        if (!IsInt()) {
            return false;
        }
        value = m_integers[static_cast<std::size_t>(m_integerPosition)];
        return true;
    }

private:
    void swap(DatabaseParameter& other) noexcept
    {
        m_kinds.swap(other.m_kinds);
        std::swap(m_position, other.m_position);
        m_strings.swap(other.m_strings);
        std::swap(m_stringPosition, other.m_stringPosition);
        m_integers.swap(other.m_integers);
        std::swap(m_integerPosition, other.m_integerPosition);
    }

    std::vector<bool> m_kinds; // true: a string
    int m_position = 0;
    std::vector<S> m_strings;
    int m_stringPosition = 0;
    std::vector<I> m_integers;
    int m_integerPosition = 0;
};

} // namespace DatabaseService
