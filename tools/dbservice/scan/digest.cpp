#include "scan/digest.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <fstream>
#include <memory>
#include <string_view>
#include <vector>

namespace dbservice {

namespace {

std::string digits(const XXH128_hash_t& hash)
{
    XXH128_canonical_t bytes;
    XXH128_canonicalFromHash(&bytes, hash);
    std::string text;
    for (const unsigned char byte : bytes.digest) {
        constexpr std::string_view hexadecimal = "0123456789abcdef";
        text += hexadecimal[byte >> 4];
        text += hexadecimal[byte & 15];
    }
    return text;
}

} // namespace

std::string idOf(const std::filesystem::path::string_type& path)
{
    return digits(XXH3_128bits(path.data(), path.size() * sizeof(path.front())));
}

std::optional<std::string> contentHash(const std::filesystem::path& file)
{
    constexpr std::size_t blockSize = 1 << 20;
    std::ifstream stream(file, std::ios::binary);
    const std::unique_ptr<XXH3_state_t, decltype(&XXH3_freeState)> state(XXH3_createState(), XXH3_freeState);
    XXH3_128bits_reset(state.get());
    std::vector<char> block(blockSize);
    while (stream.read(block.data(), static_cast<std::streamsize>(block.size())) || stream.gcount() > 0) {
        XXH3_128bits_update(state.get(), block.data(), static_cast<std::size_t>(stream.gcount()));
    }
    if (!stream.eof() || stream.bad()) {
        return std::nullopt;
    }
    return digits(XXH3_128bits_digest(state.get()));
}

} // namespace dbservice
