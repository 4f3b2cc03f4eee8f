// The order of names on three names, one a line.
#include "fuzzing.h"
#include "platform/namecompare.h"

void fuzzing::attempt(const std::string& input)
{
    std::istringstream lines(input);
    std::string a, b, c;
    std::getline(std::getline(std::getline(lines, a), b), c);
    const auto compare = [](const std::string& left, const std::string& right) {
        const int order = platform::compareNames(left, right);
        return control && left.size() > right.size() ? 1 : (order > 0) - (order < 0);
    };
    const int order = compare(a, b);
    const int next = compare(b, c);
    expect(compare(a, std::string(a)) == 0, "a name is not equal to itself");
    expect(compare(b, a) == -order, "the other way round is no mirror");
    expect(order * next < 0 || compare(a, c) == (order != 0 ? order : next), "two steps lead elsewhere");
}
