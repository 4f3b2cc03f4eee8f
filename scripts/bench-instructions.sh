#!/bin/sh
# Counts the instructions of the library and of the C interface for the same work on small stores, which no noise
# touches, and fails when the library needs too many more of them.
#
# Usage: scripts/bench-instructions.sh BUILD_FOLDER
set -eu

if [ $# -ne 1 ]; then
    echo "usage: $0 BUILD_FOLDER" >&2
    exit 2
fi
program=$1/bin/databaseservice_benchmark
rows=5000

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# Leaves the instructions of one side of one operation in $scratch/SIDE.count, and its rows in $scratch/SIDE.rows.
count()
{
    if ! LD_BIND_NOW=1 valgrind --tool=callgrind --toggle-collect='benchmarks::secondsOf(*' \
        --callgrind-out-file="$scratch/$2.profile" --log-file="$scratch/$2.log" \
        "$program" --rows "$rows" --operation "$1" --side "$2" >"$scratch/$2.rows"; then
        cat "$scratch/$2.log" 2>/dev/null >&2
        return 1
    fi
    sed -n 's/^summary: *//p' "$scratch/$2.profile" >"$scratch/$2.count"
}

failed=0

# compare OPERATION [LIMIT]
compare()
{
    count "$1" library & # at the same time, which changes no count
    count "$1" expert
    wait $!
    library=$(cat "$scratch/library.count")
    expert=$(cat "$scratch/expert.count")
    libraryRows=$(cat "$scratch/library.rows")
    if [ "$libraryRows" != "$(cat "$scratch/expert.rows")" ] || [ "${expert:-0}" -eq 0 ]; then
        echo "$1: the two sides did not do the same work" >&2
        exit 1
    fi
    verdict=$(awk -v library="$library" -v expert="$expert" -v limit="${2:-0}" 'BEGIN {
        ratio = library / expert
        printf "%9.3f%8s%s\n", ratio, (limit ? limit : ""), (limit && ratio > limit) ? "  above its limit" : ""
    }')
    printf '%-16s%8s%16s%16s%s\n' "$1" "$libraryRows" "$library" "$expert" "$verdict"
    case $verdict in
    *above*) failed=1 ;;
    esac
}

echo "Instructions on stores of $rows records"
printf '%-16s%8s%16s%16s%9s%8s\n' "" rows library expert ratio limit
compare insert 1.01
compare insert-bare 1.02
compare read-all 0.95
compare children 0.98
compare by-id 1.005
compare update 1.00
compare page-name 1.00
compare page-size 1.00
compare counts 1.005
compare class 1.00
compare gallery-insert 1.02
compare gallery-read-all 0.97
compare changes-insert 1.02
compare changes-read-all 0.97
compare log-insert 1.02
compare start 1.01
compare completed-insert 1.02
compare completed-update 1.01
compare completed-read-all 0.97
compare download-insert 1.02
compare download-update 1.01
compare download-read-all 0.97
compare upload-insert 1.02
compare upload-read-all 0.97
compare task-update 1.01
compare task-read-all 0.97
exit $failed
