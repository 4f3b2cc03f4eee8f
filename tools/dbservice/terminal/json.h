#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

namespace dbservice {

/// A JSON value that the tool prints. Members keep their order. The JSON library writes it, in one file: its own type
/// costs every file that uses it seconds to compile.
class Json {
public:
    struct Member;

    Json() = default; ///< null
    template <std::integral Plain>
    Json(Plain value) : m_value(static_cast<std::conditional_t<std::is_same_v<Plain, bool>, bool, std::int64_t>>(value))
    {
    }
    Json(double number);
    Json(const char* text);
    Json(std::string text);
    Json(std::string_view text);
    Json(const std::vector<std::string>& texts);
    Json(std::initializer_list<Member> members);
    Json(const Json& other);
    Json(Json&& other) noexcept;
    Json& operator=(const Json& other);
    Json& operator=(Json&& other) noexcept;
    ~Json();

    static Json object();
    static Json array();

    /// The member with this key, a new one where there is none; null becomes an object.
    Json& operator[](std::string_view key);
    /// The member with this key, which has to be there.
    const Json& operator[](std::string_view key) const;
    const std::vector<Member>& members() const;
    void push_back(Json element);

    bool isText() const;
    const std::string& text() const;
    std::int64_t number() const;

    bool operator==(const Json& other) const;

private:
    friend struct JsonWriter;

    std::variant<std::monostate, bool, std::int64_t, double, std::string, std::vector<Json>, std::vector<Member>>
        m_value;
};

struct Json::Member {
    std::string key;
    Json value;

    bool operator==(const Member& other) const = default;
};

/// One line, with anything repaired that is not UTF-8, and nothing in it that would steer a terminal.
std::string toLine(const Json& value);

} // namespace dbservice
