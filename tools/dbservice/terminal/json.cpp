#include "terminal/json.h"

#include "terminal/displaytext.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace dbservice {

using nlohmann::ordered_json;

/// Makes the library's value out of ours.
struct JsonWriter {
    ordered_json operator()(std::monostate /*null*/) const { return {}; }
    template <class Plain> ordered_json operator()(const Plain& value) const { return value; }
    ordered_json operator()(const std::vector<Json>& elements) const
    {
        ordered_json array = ordered_json::array();
        for (const Json& element : elements) {
            array.push_back(std::visit(*this, element.m_value));
        }
        return array;
    }
    ordered_json operator()(const std::vector<Json::Member>& members) const
    {
        ordered_json::object_t object;
        for (const Json::Member& member : members) {
            object.emplace_back(member.key, std::visit(*this, member.value.m_value));
        }
        return object;
    }

    static std::string line(const Json& value)
    {
        const ordered_json json = std::visit(JsonWriter(), value.m_value);
        return withoutTreachery(json.dump(-1, ' ', false, ordered_json::error_handler_t::replace));
    }
};

Json::Json(double number) : m_value(number) { }
Json::Json(const char* text) : m_value(std::string(text)) { }
Json::Json(std::string text) : m_value(std::move(text)) { }
Json::Json(std::string_view text) : m_value(std::string(text)) { }
Json::Json(const std::vector<std::string>& texts) : m_value(std::vector<Json>(texts.begin(), texts.end())) { }
Json::Json(std::initializer_list<Member> members) : m_value(std::vector<Member>(members)) { }
Json::Json(const Json& other) = default;
Json::Json(Json&& other) noexcept = default;
Json& Json::operator=(const Json& other) = default;
Json& Json::operator=(Json&& other) noexcept = default;
Json::~Json() = default;

Json Json::object()
{
    Json json;
    json.m_value.emplace<std::vector<Member>>();
    return json;
}

Json Json::array()
{
    Json json;
    json.m_value.emplace<std::vector<Json>>();
    return json;
}

Json& Json::operator[](std::string_view key)
{
    if (std::holds_alternative<std::monostate>(m_value)) {
        *this = object();
    }
    auto& members = std::get<std::vector<Member>>(m_value);
    const auto found = std::find_if(members.begin(), members.end(), [&](const Member& m) { return m.key == key; });
    return found != members.end() ? found->value : members.emplace_back(Member{std::string(key), {}}).value;
}

const Json& Json::operator[](std::string_view key) const
{
    const auto found = std::find_if(members().begin(), members().end(), [&](const Member& m) { return m.key == key; });
    if (found == members().end()) {
        throw std::out_of_range("no member " + std::string(key));
    }
    return found->value;
}

const std::vector<Json::Member>& Json::members() const
{
    return std::get<std::vector<Member>>(m_value);
}

void Json::push_back(Json element)
{
    std::get<std::vector<Json>>(m_value).push_back(std::move(element));
}

bool Json::isText() const
{
    return std::holds_alternative<std::string>(m_value);
}

const std::string& Json::text() const
{
    return std::get<std::string>(m_value);
}

std::int64_t Json::number() const
{
    return std::get<std::int64_t>(m_value);
}

bool Json::operator==(const Json& other) const
{
    return m_value == other.m_value; // clang 14 crashes at `default`
}

std::string toLine(const Json& value)
{
    return JsonWriter::line(value);
}

} // namespace dbservice
