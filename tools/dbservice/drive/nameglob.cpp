#include "drive/nameglob.h"

#include <algorithm>
#include <utf8proc.h>

namespace dbservice {

NameGlob::NameGlob(std::string_view pattern, Case letters) : m_case(letters)
{
    const std::vector<std::int32_t> all = characters(pattern);
    bool isPlain = true;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const auto close =
            std::find(all.begin() + static_cast<std::ptrdiff_t>(std::min(i + 2, all.size())), all.end(), ']');
        if (all[i] == '*' || all[i] == '?') {
            m_places.push_back({all[i] == '*' ? Place::Kind::AnyNumber : Place::Kind::Any});
            isPlain = false;
        } else if (all[i] == '[' && close != all.end()) {
            Place set{Place::Kind::Set};
            const auto end = static_cast<std::size_t>(close - all.begin());
            set.excluded = all[i + 1] == '!' || all[i + 1] == '^';
            for (i += set.excluded ? 2U : 1U; i < end; ++i) {
                const bool isRange = i + 2 < end && all[i + 1] == '-';
                set.ranges.emplace_back(all[i], all[isRange ? i + 2 : i]);
                i += isRange ? 2U : 0U;
            }
            m_places.push_back(std::move(set));
            isPlain = false;
        } else {
            i += all[i] == '\\' && i + 1 < all.size() ? 1U : 0U;
            m_places.push_back({Place::Kind::One, {{all[i], all[i]}}});
        }
    }
    if (isPlain) {
        m_places.insert(m_places.begin(), {Place::Kind::AnyNumber});
        m_places.push_back({Place::Kind::AnyNumber});
    }
}

bool NameGlob::matches(std::string_view name) const
{
    const std::vector<std::int32_t> text = characters(name);
    std::size_t place = 0;
    std::size_t at = 0;
    std::size_t star = m_places.size(); // the last * that was passed, and up to where it reaches
    std::size_t reached = 0;
    while (at < text.size()) {
        if (place < m_places.size() && m_places[place].kind == Place::Kind::AnyNumber) {
            star = place++;
            reached = at;
        } else if (place < m_places.size() && fits(m_places[place], text[at])) {
            ++place;
            ++at;
        } else if (star < m_places.size()) {
            place = star + 1;
            at = ++reached;
        } else {
            return false;
        }
    }
    return std::all_of(m_places.begin() + static_cast<std::ptrdiff_t>(place), m_places.end(),
                       [](const Place& left) { return left.kind == Place::Kind::AnyNumber; });
}

bool NameGlob::fits(const Place& place, std::int32_t character)
{
    const bool isAmong = std::any_of(place.ranges.begin(), place.ranges.end(), [character](const auto& range) {
        return character >= range.first && character <= range.second;
    });
    return place.kind == Place::Kind::Any || isAmong != place.excluded;
}

std::vector<std::int32_t> NameGlob::characters(std::string_view text) const
{
    std::vector<std::int32_t> found;
    while (!text.empty()) {
        utf8proc_int32_t character = 0;
        const utf8proc_ssize_t bytes = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                                        static_cast<utf8proc_ssize_t>(text.size()), &character);
        character = bytes > 0 ? character : 0xFFFD;
        found.push_back(m_case == Case::Ignored ? utf8proc_tolower(character) : character);
        text.remove_prefix(bytes > 0 ? static_cast<std::size_t>(bytes) : 1);
    }
    return found;
}

} // namespace dbservice
