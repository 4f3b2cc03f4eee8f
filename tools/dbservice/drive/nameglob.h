#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace dbservice {

/// A pattern for names, as shells have them: * stands for any characters, ? for one, [a-z] and [!a-z] for one of some,
/// \ takes the meaning from the next. Without any of the first three it is looked for anywhere in a name.
class NameGlob {
public:
    enum class Case { Ignored, Heeded };

    NameGlob(std::string_view pattern, Case letters);

    bool matches(std::string_view name) const;

private:
    /// One place of the pattern.
    struct Place {
        enum class Kind { One, Any, AnyNumber, Set } kind;
        std::vector<std::pair<std::int32_t, std::int32_t>> ranges = {}; ///< of a character, and of a set
        bool excluded = false;
    };

    static bool fits(const Place& place, std::int32_t character);
    std::vector<std::int32_t> characters(std::string_view text) const;

    Case m_case;
    std::vector<Place> m_places;
};

} // namespace dbservice
