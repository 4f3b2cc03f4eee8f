#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace benchmarks {

/// What made-up records are made from, the same in every run.
class Random {
public:
    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(m_engine() % limit); }
    bool oneIn(std::size_t n) { return below(n) == 0; }

    template <class Container> const auto& of(const Container& values) { return values[below(std::size(values))]; }

    std::string letters(std::string_view alphabet, std::size_t length)
    {
        std::string text(length, ' ');
        std::generate(text.begin(), text.end(), [&] { return of(alphabet); });
        return text;
    }

private:
    std::mt19937_64 m_engine{20240229};
};

constexpr std::string_view idAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
constexpr std::string_view hexAlphabet = "0123456789abcdef";

/// So many records, each made by `make(random, number)`.
template <class Make> auto madeUp(std::size_t rows, Make make)
{
    Random random;
    std::vector<decltype(make(random, std::size_t{}))> records;
    records.reserve(rows);
    for (std::size_t number = 0; number < rows; ++number) {
        records.push_back(make(random, number));
    }
    return records;
}

} // namespace benchmarks
