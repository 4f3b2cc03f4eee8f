#include "terminal/displaytext.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdlib>

namespace dbservice {

namespace {

/// Takes the next character off the front of `text`; bytes that are no UTF-8 come one by one as U+FFFD.
utf8proc_int32_t takeCharacter(std::string_view& text)
{
    utf8proc_int32_t character = 0;
    const utf8proc_ssize_t length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                                     static_cast<utf8proc_ssize_t>(text.size()), &character);
    text.remove_prefix(length > 0 ? static_cast<std::size_t>(length) : 1);
    return length > 0 ? character : 0xFFFD;
}

/// Controls, line and paragraph separators, and the marks that change the direction of what follows.
bool isTreacherous(utf8proc_int32_t character)
{
    switch (utf8proc_category(character)) {
    case UTF8PROC_CATEGORY_CC:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
        return true;
    default:
        return character == 0x061C || character == 0x200E || character == 0x200F ||
            (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
    }
}

void appendEscaped(std::string& text, utf8proc_int32_t character)
{
    switch (character) {
    case '\n':
        text += "\\n";
        return;
    case '\r':
        text += "\\r";
        return;
    case '\t':
        text += "\\t";
        return;
    default:
        break;
    }
    std::array<char, 8> digits{};
    char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), character, 16).ptr;
    const std::string hex(digits.data(), end);
    if (character < 0x80) {
        text += (hex.size() == 1 ? "\\x0" : "\\x") + hex;
    } else {
        text += "\\u{" + hex + "}";
    }
}

std::string padded(long long number)
{
    const std::string digits = std::to_string(number);
    return digits.size() < 2 ? "0" + digits : digits;
}

} // namespace

std::string printable(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::string_view before = text;
        const utf8proc_int32_t character = takeCharacter(text);
        if (isTreacherous(character)) {
            appendEscaped(result, character);
        } else if (character == 0xFFFD) {
            result += "\xEF\xBF\xBD";
        } else {
            result += before.substr(0, before.size() - text.size());
        }
    }
    return result;
}

std::string withoutTreachery(std::string json)
{
    const auto isPlain = [](char letter) { return static_cast<unsigned char>(letter) < 0x7F; };
    if (std::all_of(json.begin(), json.end(), isPlain)) {
        return json;
    }
    std::string result;
    for (std::string_view rest = json; !rest.empty();) {
        const std::string_view before = rest;
        const utf8proc_int32_t character = takeCharacter(rest);
        if (isTreacherous(character) && character >= 0x7F) {
            constexpr std::string_view digits = "0123456789abcdef";
            result += "\\u";
            for (const unsigned shift : {12U, 8U, 4U, 0U}) {
                result += digits[static_cast<unsigned>(character) >> shift & 0xFU];
            }
        } else {
            result += before.substr(0, before.size() - rest.size());
        }
    }
    return result;
}

std::string inCell(std::string_view text)
{
    std::string result = printable(text);
    if (result == text && !text.starts_with("$'")) {
        return result;
    }
    std::string marked;
    for (const char letter : text) {
        marked += letter == '\\' || letter == '\'' ? std::string("\\") + letter : std::string(1, letter);
    }
    return "$'" + printable(marked) + "'";
}

int cellWidth(std::string_view text)
{
    int width = 0;
    while (!text.empty()) {
        width += utf8proc_charwidth(takeCharacter(text));
    }
    return width;
}

std::string fitted(std::string_view text, int width)
{
    if (cellWidth(text) <= width) {
        return std::string(text);
    }
    std::string result;
    int used = 1; // the ellipsis
    while (!text.empty()) {
        const std::string_view before = text;
        used += utf8proc_charwidth(takeCharacter(text));
        if (used > width) {
            break;
        }
        result += before.substr(0, before.size() - text.size());
    }
    return width > 0 ? result + "\xE2\x80\xA6" : std::string();
}

std::string humanSize(std::int64_t bytes)
{
    constexpr std::array units{"B", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    std::size_t unit = 0;
    std::int64_t tenths = 0;
    for (std::int64_t whole = bytes; std::llabs(whole) >= 1024 && unit + 1 < units.size(); ++unit) {
        tenths = (whole % 1024) * 10 / 1024;
        whole /= 1024;
        bytes = whole;
    }
    std::string text = std::to_string(bytes);
    if (unit > 0) {
        text += "." + std::to_string(std::llabs(tenths));
    }
    return text + " " + units[unit];
}

std::string humanTime(std::int64_t time)
{
    using namespace std::chrono;
    constexpr std::int64_t furthest = 100'000'000'000;
    std::int64_t seconds = time;
    for (int unit = 0; unit < 2 && (seconds >= furthest || seconds <= -furthest); ++unit) {
        seconds = seconds / 1000 - (seconds % 1000 < 0 ? 1 : 0);
    }
    if (seconds >= furthest || seconds <= -furthest) {
        return std::to_string(time);
    }
    const std::int64_t wholeDays = seconds / 86400 - (seconds % 86400 < 0 ? 1 : 0);
    const year_month_day date{sys_days{days{static_cast<days::rep>(wholeDays)}}};
    const std::int64_t rest = seconds - wholeDays * 86400;
    return std::to_string(static_cast<int>(date.year())) + "-" + padded(static_cast<unsigned>(date.month())) + "-" +
        padded(static_cast<unsigned>(date.day())) + " " + padded(rest / 3600) + ":" + padded(rest / 60 % 60) + ":" +
        padded(rest % 60);
}

std::string grouped(std::int64_t number)
{
    std::string text = std::to_string(number);
    const std::size_t first = number < 0 ? 1 : 0;
    for (std::size_t position = text.size(); position > first + 3;) {
        position -= 3;
        text.insert(position, 1, ',');
    }
    return text;
}

std::string counted(std::int64_t number, std::string_view singular, std::string_view plural)
{
    return grouped(number) + " " + std::string(number == 1 ? singular : plural);
}

std::string pageNumbers(std::int64_t offset, std::int64_t shown, std::int64_t total)
{
    const std::string which = shown > 0 ? grouped(offset + 1) + "-" + grouped(offset + shown) : "none";
    return which + " of " + grouped(total);
}

std::string twoDecimals(double number)
{
    const long long hundredths = std::llround(number * 100);
    return std::to_string(hundredths / 100) + "." + padded(hundredths % 100);
}

} // namespace dbservice
