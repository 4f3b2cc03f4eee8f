#!/usr/bin/env python3
"""Writes infrastructure/platform/casefolding.cpp from Unicode's CaseFolding.txt.

usage: scripts/generate-case-folding.py CaseFolding.txt > infrastructure/platform/casefolding.cpp

The table is part of an order that is stored on disk, so it stays with one Unicode version for good.
"""

import sys

VERSION = "15.0.0"

HEAD = """\
// Written by scripts/generate-case-folding.py from the simple case folding of Unicode {version}; not to be edited.
#include "platform/casefolding.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

namespace platform::detail {{

namespace {{

/// Every `stride`-th code point from `first` to `last` folds to itself plus `delta`.
struct FoldRange {{
    char32_t first;
    char32_t last;
    std::int32_t delta;
    char32_t stride;
}};

// clang-format off
constexpr std::array<FoldRange, {count}> foldRanges{{{{
"""

TAIL = """\
}};
// clang-format on

} // namespace

char32_t foldCase(char32_t codePoint) noexcept
{
    const auto next = std::upper_bound(foldRanges.begin(), foldRanges.end(), codePoint,
                                       [](char32_t value, const FoldRange& range) { return value < range.first; });
    if (next == foldRanges.begin()) {
        return codePoint;
    }
    const FoldRange& range = *std::prev(next);
    if (codePoint > range.last || (codePoint - range.first) % range.stride != 0) {
        return codePoint;
    }
    return static_cast<char32_t>(static_cast<std::int32_t>(codePoint) + range.delta);
}

} // namespace platform::detail
"""


def read_foldings(path):
    """The pairs of the statuses C and S, in order of the code points."""
    with open(path, encoding="utf-8") as lines:
        if next(lines).strip() != f"# CaseFolding-{VERSION}.txt":
            sys.exit(f"{path} is not the CaseFolding.txt of Unicode {VERSION}")
        foldings = []
        for line in lines:
            fields = [field.strip() for field in line.split("#")[0].split(";")]
            if len(fields) >= 3 and fields[1] in ("C", "S"):
                foldings.append((int(fields[0], 16), int(fields[2], 16)))
    return sorted(foldings)


def join_ranges(foldings):
    """Neighbours one or two apart that move by the same distance share a range [first, last, delta, stride]."""
    ranges = []
    for code, target in foldings:
        delta = target - code
        if ranges and ranges[-1][2] == delta:
            last = ranges[-1]
            step = code - last[1]
            if step == last[3] or (last[0] == last[1] and step <= 2):
                last[1], last[3] = code, step
                continue
        ranges.append([code, code, delta, 1])
    return ranges


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    ranges = join_ranges(read_foldings(sys.argv[1]))
    sys.stdout.write(HEAD.format(version=VERSION, count=len(ranges)))
    for first, last, delta, stride in ranges:
        sys.stdout.write(f"    {{0x{first:04X}, 0x{last:04X}, {delta}, {stride}}},\n")
    sys.stdout.write(TAIL)


main()
