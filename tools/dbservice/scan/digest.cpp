#include "scan/digest.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <fstream>
#include <memory>
#include <vector>

namespace dbservice {

namespace {

Digest toDigest(const XXH128_hash_t& hash)
{
    return {hash.high64, hash.low64};
}

} // namespace

Digest digestOf(std::string_view bytes)
{
    return toDigest(XXH3_128bits(bytes.data(), bytes.size()));
}

std::string textOf(const Digest& digest)
{
    constexpr std::string_view hexadecimal = "0123456789abcdef";
    constexpr std::size_t bits = 64;
    std::string text(32, '0');
    auto digit = text.begin();
    for (const std::uint64_t half : {digest.high, digest.low}) {
        for (std::size_t shift = bits; shift > 0; shift -= 4) {
            *digit++ = hexadecimal[(half >> (shift - 4)) & 15];
        }
    }
    return text;
}

Digest digestOfPath(const std::filesystem::path::string_type& path)
{
    return toDigest(XXH3_128bits(path.data(), path.size() * sizeof(path.front())));
}

std::string idOf(const std::filesystem::path::string_type& path)
{
    return textOf(digestOfPath(path));
}

std::optional<std::string> contentHash(const std::filesystem::path& file)
{
    constexpr std::size_t blockSize = 1 << 18;
    static std::vector<char> block(blockSize); // for one file after the other
    std::ifstream stream(file, std::ios::binary);
    const std::unique_ptr<XXH3_state_t, decltype(&XXH3_freeState)> state(XXH3_createState(), XXH3_freeState);
    XXH3_128bits_reset(state.get());
    while (stream.read(block.data(), blockSize) || stream.gcount() > 0) {
        XXH3_128bits_update(state.get(), block.data(), static_cast<std::size_t>(stream.gcount()));
    }
    if (!stream.eof() || stream.bad()) {
        return std::nullopt;
    }
    return textOf(toDigest(XXH3_128bits_digest(state.get())));
}

} // namespace dbservice
