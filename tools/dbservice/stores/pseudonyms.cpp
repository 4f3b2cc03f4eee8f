#include "stores/pseudonyms.h"

#include "databaseservice/clientconstants.h"
#include "platform/namecompare.h"

#include <algorithm>
#include <array>
#include <optional>
#include <unordered_set>
#include <utf8proc.h>

namespace dbservice {

namespace {

using Character = utf8proc_int32_t;

constexpr std::size_t letters = 20;                     ///< of each script, in its order
constexpr std::uint64_t group = letters * letters * 10; ///< two letters and a digit

struct Script {
    Character first = 0; ///< of the characters that are taken for the script
    Character last = 0;
    std::array<Character, letters> alphabet{};
    Character capital = 0; ///< how far a capital is before its letter
};

constexpr std::array<Character, letters> everyOne(Character first, Character step)
{
    std::array<Character, letters> alphabet{};
    for (std::size_t i = 0; i < letters; ++i) {
        alphabet[i] = first + static_cast<Character>(i) * step;
    }
    return alphabet;
}

constexpr std::array<Character, letters> latin{'b', 'c', 'd', 'f', 'g', 'h', 'j', 'k', 'l', 'm',
                                               'n', 'p', 'q', 'r', 's', 't', 'v', 'w', 'x', 'z'};
constexpr Script digits{'0', '9', {}};
constexpr std::array scripts{
    Script{'A', 'Z', latin, 0x20},
    Script{'a', 'z', latin, 0x20},
    Script{0xC0, 0x24F, latin, 0x20},
    Script{0x370, 0x3FF, everyOne(0x3B1, 1), 0x20}, // with the final sigma, which folds to the other
    Script{0x400, 0x52F, everyOne(0x430, 1), 0x20},
    Script{0x590, 0x5FF, everyOne(0x5D0, 1)},
    Script{0x600, 0x6FF, everyOne(0x627, 1)},
    Script{0x900, 0x97F, everyOne(0x915, 1)},
    Script{0xE00, 0xE7F, everyOne(0xE01, 1)},
    Script{0x3040, 0x309F, everyOne(0x304B, 2)},
    Script{0x30A0, 0x30FF, everyOne(0x30AB, 2)},
    Script{0x3400, 0x9FFF, everyOne(0x4E00, 1000)},
    Script{0xAC00, 0xD7AF, everyOne(0xAC00, 500)},
    Script{0xF900, 0x2FA1F, everyOne(0x4E00, 1000)},
};

const Script* scriptOf(Character character)
{
    if (character >= '0' && character <= '9') {
        return &digits;
    }
    const auto found = std::find_if(scripts.begin(), scripts.end(), [character](const Script& script) {
        return character >= script.first && character <= script.last;
    });
    return found == scripts.end() ? nullptr : &*found;
}

void append(std::string& text, Character character)
{
    std::array<utf8proc_uint8_t, 4> bytes{};
    const utf8proc_ssize_t length = utf8proc_encode_char(character, bytes.data());
    text.append(reinterpret_cast<const char*>(bytes.data()), static_cast<std::size_t>(length));
}

/// The dot and what follows it, where that is known.
std::string_view knownExtension(std::string_view part)
{
    return DatabaseService::ClientConstants::findExtension(part) == nullptr ? std::string_view()
                                                                            : part.substr(part.rfind('.'));
}

/// Calls for each part of a path, with the separator before it.
template <class OnPart> void forParts(std::string_view text, OnPart onPart)
{
    constexpr std::string_view separators = "/\\";
    while (!text.empty()) {
        const bool separated = separators.find(text.front()) != std::string_view::npos;
        const std::size_t end = std::min(text.find_first_of(separators, separated ? 1 : 0), text.size());
        onPart(text.substr(0, separated ? 1 : 0), text.substr(separated ? 1 : 0, end - (separated ? 1 : 0)));
        text.remove_prefix(end);
    }
}

/// A next number that looks like any; a generator of the library's takes longer to make than a text.
std::uint64_t mixed(std::uint64_t number)
{
    number += 0x9E3779B97F4A7C15U;
    number = (number ^ (number >> 30U)) * 0xBF58476D1CE4E5B9U;
    number = (number ^ (number >> 27U)) * 0x94D049BB133111EBU;
    return number ^ (number >> 31U);
}

std::size_t lengthOfClass(std::size_t length, std::size_t least)
{
    std::size_t highest = 8;
    while (highest < length) {
        highest *= 2;
    }
    return highest == 8 ? least : std::max(least, highest * 3 / 4);
}

} // namespace

/// What a pseudonym shows of its text.
struct Pseudonyms::Look {
    std::string sign;               ///< at the front, if there is one
    const Script* begins = nullptr; ///< of the first character behind that
    const Script* script = nullptr; ///< of the first letter
    std::vector<bool> capitals;
    std::size_t length = 0;
    std::string extension;

    explicit Look(std::string_view part) : extension(knownExtension(part))
    {
        part.remove_suffix(extension.size());
        bool first = true;
        while (!part.empty()) {
            Character character = 0;
            const utf8proc_ssize_t bytes = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(part.data()),
                                                            static_cast<utf8proc_ssize_t>(part.size()), &character);
            part.remove_prefix(bytes > 0 ? static_cast<std::size_t>(bytes) : 1);
            ++length;
            const Script* const found = bytes > 0 ? scriptOf(character) : nullptr;
            if (length == 1 && found == nullptr && character > ' ' && character < 0x7F) {
                append(sign, character);
                continue;
            }
            begins = first ? found : begins;
            first = false;
            if (found != nullptr && found != &digits) {
                script = script == nullptr ? found : script;
                capitals.push_back(utf8proc_category(character) == UTF8PROC_CATEGORY_LU);
            }
        }
        script = script == nullptr ? &scripts.front() : script;
        begins = begins == nullptr ? script : begins;
    }

    /// The text for a place among all, of `groups` times `group` places.
    std::string text(std::uint64_t place, std::size_t groups, std::uint64_t seed) const
    {
        const auto random = [&seed] { return seed = mixed(seed); };
        const std::size_t wanted = lengthOfClass(length, 3 * groups);
        std::string made = sign;
        std::size_t used = 0;
        std::size_t letter = 0;
        const auto add = [&](const Script& from, std::uint64_t which) {
            const bool all = !capitals.empty() && std::find(capitals.begin(), capitals.end(), false) == capitals.end();
            const bool isCapital = letter < capitals.size() ? capitals[letter] : all;
            append(made, from.alphabet[which] - (isCapital ? from.capital : 0));
            ++letter;
            ++used;
        };
        if (begins == &digits) {
            const std::string number = std::to_string(place);
            used = 4 * groups; // enough for each place
            made += std::string(used - number.size(), '0') + number;
        } else {
            std::uint64_t weight = 1;
            for (std::size_t i = 1; i < groups; ++i) {
                weight *= group;
            }
            for (; weight > 0; weight /= group) {
                const std::uint64_t here = place / weight % group;
                add(*begins, here / 10 / letters);
                add(*begins, here / 10 % letters);
                made += static_cast<char>('0' + here % 10);
                ++used;
            }
        }
        for (int run = 0; used < wanted; ++run) {
            if (run % 3 == 2 || used + 1 == wanted) { // a digit at the end too, whatever is stored behind it
                made += static_cast<char>('0' + random() % 10);
                ++used;
            } else {
                add(*script, random() % letters);
            }
        }
        return made + extension;
    }
};

Pseudonyms::Pseudonyms()
{
    std::random_device device;
    std::seed_seq seed{device(), device(), device(), device(), device(), device(), device(), device()};
    m_random.seed(seed);
}

bool Pseudonyms::isKept(std::string_view text)
{
    using namespace DatabaseService::ClientConstants;
    static const std::unordered_set<std::string_view> words = [] {
        std::unordered_set<std::string_view> all{"",
                                                 ".",
                                                 "..",
                                                 "root",
                                                 "drive#file",
                                                 "drive#folder",
                                                 "SyncCloudFolder",
                                                 folderMimeType,
                                                 unknownMimeType,
                                                 linkMimeType,
                                                 fifoMimeType,
                                                 socketMimeType,
                                                 blockDeviceMimeType,
                                                 characterDeviceMimeType};
        for (const KnownExtension& known : knownExtensions) {
            all.insert(known.mimeType);
        }
        return all;
    }();
    return words.contains(text);
}

void Pseudonyms::add(std::string_view text)
{
    if (!isKept(text)) {
        forParts(text, [this](std::string_view, std::string_view part) {
            if (!isKept(part)) {
                m_parts.try_emplace(std::string(part));
            }
        });
    }
}

void Pseudonyms::assign()
{
    using Part = decltype(m_parts)::value_type;
    std::vector<Part*> parts;
    parts.reserve(m_parts.size());
    for (Part& part : m_parts) {
        parts.push_back(&part);
    }
    std::sort(parts.begin(), parts.end(), [](const Part* left, const Part* right) {
        const int byName = platform::compareNames(left->first, right->first);
        return byName != 0 ? byName < 0 : left->first < right->first;
    });
    std::size_t groups = 2;
    std::uint64_t places = group * group;
    while (places < 4 * parts.size()) {
        places *= group;
        ++groups;
    }
    const std::uint64_t step = parts.empty() ? 1 : places / parts.size();
    std::unordered_set<std::string_view> alike; // those of names that differ in capitals only
    std::uint64_t place = 0;
    std::uint64_t seed = 0;
    std::string last;
    std::string_view nameOfPlace;
    std::optional<Look> lookOfLast;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const bool isAlike = i > 0 && platform::compareNames(nameOfPlace, parts[i]->first) == 0;
        std::string made;
        Look look(parts[i]->first);
        if (isAlike) {
            look.sign = lookOfLast->sign;
            look.begins = lookOfLast->begins;
            made = look.text(place, groups, seed);
        }
        if (!isAlike || alike.contains(made)) {
            alike.clear();
            nameOfPlace = parts[i]->first;
            place = i * step + below(step);
            seed = m_random();
            made = look.text(place, groups, seed);
            if (i > 0 && platform::compareNames(last, made) >= 0) { // scripts in an order of their own
                look.sign = lookOfLast->sign;
                look.begins = lookOfLast->begins;
                made = look.text(place, groups, seed);
            }
            last = made;
            lookOfLast = look;
        }
        parts[i]->second = made;
        alike.insert(parts[i]->second);
    }
}

std::string Pseudonyms::of(std::string_view text) const
{
    if (isKept(text)) {
        return std::string(text);
    }
    std::string made;
    forParts(text, [&](std::string_view separator, std::string_view part) {
        made += separator;
        made += isKept(part) ? std::string(part) : m_parts.at(std::string(part));
    });
    return made;
}

std::uint64_t Pseudonyms::below(std::uint64_t limit)
{
    return m_random() % limit;
}

} // namespace dbservice
