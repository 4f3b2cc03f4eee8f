#include "stores/tracefile.h"

#include "platform/paths.h"
#include "platform/text.h"
#include "terminal/failure.h"
#include "terminal/json.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace dbservice {

using DatabaseService::CallTrace;

namespace {

std::int64_t microseconds(std::chrono::nanoseconds time)
{
    return std::chrono::duration_cast<std::chrono::microseconds>(time).count();
}

/// One that is complete in itself, in the words of the format.
Json slice(const std::string& name, std::chrono::nanoseconds begin, std::chrono::nanoseconds length, int thread)
{
    return {{"name", name}, {"ph", "X"},    {"ts", microseconds(begin)}, {"dur", microseconds(length)},
            {"pid", 1},     {"tid", thread}};
}

/// Such as "INSERT INTO DriveDataTable" or "SELECT FROM DriveDataTable", short enough for a slice.
std::string nameOf(const CallTrace& call)
{
    constexpr std::size_t longest = 60;
    std::string text(call.statement);
    if (text.starts_with("SELECT ") || text.starts_with("select ")) {
        const std::size_t from = std::min(text.find(" FROM "), text.find(" from "));
        text.erase(6, from == std::string::npos ? 0 : from - 6);
    } else {
        text.erase(std::min(text.find('('), text.size()));
    }
    return text.substr(0, longest);
}

} // namespace

TraceFile::TraceFile(const std::filesystem::path& file) : m_file(file, std::ios::binary)
{
    if (!m_file) {
        throw Failure("cannot write the trace file " + platform::toUtf8(file));
    }
    m_file << '[';
    DatabaseService::SetCallTrace([this](const CallTrace& call) { write(call); });
}

TraceFile::~TraceFile()
{
    DatabaseService::SetCallTrace({});
    m_file << "\n]\n";
}

void TraceFile::write(const CallTrace& call)
{
    const std::lock_guard lock(m_mutex);
    const auto [known, isNew] = m_threads.emplace(std::this_thread::get_id(), static_cast<int>(m_threads.size()) + 1);
    const int thread = known->second;
    const std::array stages{std::pair{"open", call.opening}, std::pair{"wait for the lock", call.waiting},
                            std::pair{"work", call.working}, std::pair{"commit", call.committing}};
    std::chrono::nanoseconds at = call.start - m_begin;
    Json whole = slice(nameOf(call), at, call.opening + call.waiting + call.working + call.committing, thread);
    whole["args"] = Json{{"store", std::string(call.store)},
                         {"statement", std::string(call.statement)},
                         {"rows in", call.rowsIn},
                         {"rows out", call.rowsOut},
                         {"succeeded", call.succeeded}};
    const bool isFirst = m_file.tellp() == std::streampos(1);
    m_file << (isFirst ? "\n" : ",\n") << toLine(whole);
    for (const auto& [name, length] : stages) {
        if (length > std::chrono::nanoseconds(0)) {
            m_file << ",\n" << toLine(slice(name, at, length, thread));
            at += length;
        }
    }
}

} // namespace dbservice
