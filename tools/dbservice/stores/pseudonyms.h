#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace dbservice {

/// Stands for texts that nobody else shall read. The same text always gets the same pseudonym, and two texts never
/// share one. The parts of a path are replaced one by one. A pseudonym tells of its text:
///
/// - where it sorts among the others in the order of names, and whether it is the same name in capitals,
/// - how long it is: up to 8, 16, 32, 64 ... characters,
/// - the script of its first letter, whether it begins with a digit or a sign, and where its capitals are,
/// - the extension, where that is a known one.
///
/// It has no three letters in a row apart from the extension, so that no word can be in it. The rest is random, and so
/// differs from object to object. Words of the stores' own stay, such as mime types (`isKept`).
class Pseudonyms {
public:
    Pseudonyms();

    /// Every text comes in here once at least, before any pseudonym is asked for.
    void add(std::string_view text);
    void assign();
    /// Of a text that was added.
    std::string of(std::string_view text) const;

    static bool isKept(std::string_view text);

private:
    struct Look;

    std::uint64_t below(std::uint64_t limit);

    std::mt19937_64 m_random;
    std::unordered_map<std::string, std::string> m_parts;
};

} // namespace dbservice
