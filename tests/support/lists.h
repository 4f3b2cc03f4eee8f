#pragma once

#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace testsupport {

/// What `function` makes of each element; a member will do.
template <class Range, class Function> auto mapped(const Range& range, Function function)
{
    std::vector<std::decay_t<std::invoke_result_t<Function, decltype(*std::begin(range))>>> results;
    for (const auto& element : range) {
        results.push_back(std::invoke(function, element));
    }
    return results;
}

inline std::string joined(const std::vector<std::string>& words, const std::string& separator = ",")
{
    std::string text;
    for (const std::string& word : words) {
        text += (&word == &words.front() ? "" : separator) + word;
    }
    return text;
}

/// The words between blanks.
inline std::vector<std::string> split(const std::string& words)
{
    std::istringstream stream(words);
    return {std::istream_iterator<std::string>(stream), {}};
}

} // namespace testsupport
