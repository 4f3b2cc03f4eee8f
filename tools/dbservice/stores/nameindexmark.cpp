#include "stores/nameindexmark.h"

#include "databaseservice/version.h"
#include "platform/filestatus.h"
#include "platform/paths.h"

#include <array>
#include <fstream>
#include <string>
#include <system_error>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

constexpr std::size_t headerSize = 100;
constexpr std::size_t transactionsAt = 24; // four bytes, the highest first

bool isBeside(const fs::path& file, const char* suffix)
{
    std::error_code ignored;
    return fs::exists(fs::path(file) += suffix, ignored);
}

std::string textOf(const NameIndexMark::State& state)
{
    return std::to_string(state.all.high) + ' ' + std::to_string(state.all.low);
}

} // namespace

NameIndexMark::NameIndexMark(const fs::path& file)
{
    std::error_code error;
    m_file = fs::canonical(file, error);
    const fs::path folder = platform::userCacheFolder();
    if (!error && !folder.empty()) {
        m_mark = folder / "dbservice" / ("nameindex-" + idOf(m_file.native()));
    }
}

std::optional<NameIndexMark::State> NameIndexMark::state() const
{
    std::array<char, headerSize> header{};
    std::ifstream stream(m_file, std::ios::binary);
    std::error_code error;
    const platform::FileStatus status = platform::readStatus(m_file, error);
    if (!stream.read(header.data(), headerSize) || error || isBeside(m_file, "-journal") || isBeside(m_file, "-wal")) {
        return std::nullopt;
    }
    State state{};
    for (std::size_t i = 0; i < sizeof state.transactions; ++i) {
        state.transactions = (state.transactions << 8) | static_cast<unsigned char>(header[transactionsAt + i]);
    }
    const std::string all = std::string(header.data(), header.size()) + ' ' + std::to_string(status.size) + ' ' +
        std::to_string(status.modifiedNanoseconds) + ' ' + DatabaseService::NameOrderVersion();
    state.all = digestOf(all);
    return state;
}

bool NameIndexMark::isFor(const State& state) const
{
    std::string line;
    std::ifstream stream(m_mark);
    return !m_mark.empty() && std::getline(stream, line) && line == textOf(state);
}

void NameIndexMark::set(const State& state) const
{
    if (!m_mark.empty()) {
        std::error_code ignored;
        fs::create_directories(m_mark.parent_path(), ignored);
        std::ofstream(m_mark) << textOf(state) << '\n';
    }
}

void NameIndexMark::keepThrough(const std::function<bool()>& write) const
{
    const std::optional<State> before = state();
    const bool wentWell = write();
    const std::optional<State> after = state();
    if (before && after && wentWell && isFor(*before) && after->transactions == before->transactions + 1) {
        set(*after);
    }
}

} // namespace dbservice
