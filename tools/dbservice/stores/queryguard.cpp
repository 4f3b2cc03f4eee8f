#include "stores/queryguard.h"

#include <algorithm>
#include <array>
#include <sqlite3.h>

namespace dbservice {

namespace {

/// Pragmas that tell something. Some of them change it when a value comes along.
constexpr std::array<std::string_view, 14> plainPragmas{
    "application_id", "auto_vacuum", "collation_list", "compile_options", "data_version",
    "database_list",  "encoding",    "freelist_count", "function_list",   "module_list",
    "page_count",     "page_size",   "pragma_list",    "user_version"};
/// Pragmas whose value is the name of what they tell of.
constexpr std::array<std::string_view, 10> namingPragmas{
    "foreign_key_check", "foreign_key_list", "index_info", "index_list", "index_xinfo",
    "integrity_check",   "quick_check",      "table_info", "table_list", "table_xinfo"};
/// Functions that do more than give a value.
constexpr std::array<std::string_view, 4> refusedFunctions{"fts3_tokenizer", "load_extension", "optimize",
                                                           "sqlite_log"};

template <class Names> bool isAmong(const Names& names, const char* name)
{
    return std::any_of(names.begin(), names.end(),
                       [name](std::string_view known) { return sqlite3_stricmp(known.data(), name) == 0; });
}

const char* text(const char* given)
{
    return given == nullptr ? "" : given;
}

} // namespace

QueryGuard::QueryGuard(sqlite3* db, std::chrono::milliseconds limit) : m_db(db), m_limit(limit)
{
    constexpr int longestValue = 64 << 20; // what a function gives is not counted by time
    constexpr int instructions = 1000;     // between two looks at the clock
    sqlite3_exec(db, "PRAGMA query_only = 1", nullptr, nullptr, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_limit(db, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_limit(db, SQLITE_LIMIT_LENGTH, longestValue);
    sqlite3_set_authorizer(
        db,
        [](void* guard, int action, const char* first, const char* second, const char*, const char*) {
            return static_cast<QueryGuard*>(guard)->isAllowed(action, first, second) ? SQLITE_OK : SQLITE_DENY;
        },
        this);
    sqlite3_progress_handler(
        db, instructions, [](void* guard) { return static_cast<QueryGuard*>(guard)->mayGoOn() ? 0 : 1; }, this);
    m_end = std::chrono::steady_clock::now() + limit;
}

QueryGuard::~QueryGuard()
{
    sqlite3_progress_handler(m_db, 0, nullptr, nullptr);
    sqlite3_set_authorizer(m_db, nullptr, nullptr);
}

Statement::Handle QueryGuard::prepare(std::string_view text)
{
    m_refusal.clear();
    m_ranOutOfTime = false;
    m_end = std::chrono::steady_clock::now() + m_limit;
    const auto compile = [this](std::string_view& rest) {
        sqlite3_stmt* prepared = nullptr;
        const char* end = nullptr;
        const int code = sqlite3_prepare_v2(m_db, rest.data(), static_cast<int>(rest.size()), &prepared, &end);
        rest.remove_prefix(end == nullptr ? rest.size() : static_cast<std::size_t>(end - rest.data()));
        return std::pair(code, Statement::Handle(prepared));
    };
    if (text.find('\0') != std::string_view::npos) {
        m_refusal = "it holds a zero byte";
        return nullptr;
    }
    auto [code, statement] = compile(text);
    if (code != SQLITE_OK) {
        return nullptr;
    }
    if (statement == nullptr) {
        m_refusal = "it is empty";
    } else if (sqlite3_stmt_readonly(statement.get()) == 0) {
        m_refusal = "it would write";
    } else if (sqlite3_column_count(statement.get()) == 0) {
        m_refusal = "it gives no rows";
    } else if (!text.empty()) {
        const auto [following, second] = compile(text); // comments are none
        if (following != SQLITE_OK || second != nullptr) {
            m_refusal = "it is more than one statement";
        }
    }
    return m_refusal.empty() ? std::move(statement) : nullptr;
}

bool QueryGuard::isAllowed(int action, const char* first, const char* second)
{
    switch (action) {
    case SQLITE_SELECT:
    case SQLITE_READ:
    case SQLITE_RECURSIVE:
        return true;
    case SQLITE_FUNCTION:
        if (!isAmong(refusedFunctions, text(second))) {
            return true;
        }
        m_refusal = std::string("the function ") + second + " does more than read";
        return false;
    case SQLITE_PRAGMA:
        if (isAmong(namingPragmas, text(first)) || (second == nullptr && isAmong(plainPragmas, text(first)))) {
            return true;
        }
        m_refusal = std::string("the pragma ") + text(first) + " does more than read";
        return false;
    case SQLITE_UPDATE:
        // So SQLite asks when it declares the columns of json_each and the like. A true one is no reading statement.
        if (isAmong(std::array<std::string_view, 1>{"sqlite_master"}, text(first))) {
            return true;
        }
        [[fallthrough]];
    default:
        m_refusal = "it does more than read";
        return false;
    }
}

bool QueryGuard::mayGoOn()
{
    m_ranOutOfTime = m_ranOutOfTime || std::chrono::steady_clock::now() >= m_end;
    return !m_ranOutOfTime;
}

} // namespace dbservice
