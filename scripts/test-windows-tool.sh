#!/usr/bin/env bash
# Has the command-line tool of a Windows build scan a real folder, scan it again and list it, with names in many
# scripts, with blanks and with emoji: test-windows-tool.sh PROGRAM
set -euo pipefail
export LC_ALL=C.UTF-8

program=$(realpath -- "$1")
wine=$(realpath -- "$(dirname -- "$0")/run-wine")
scratch=$(mktemp -d)
trap 'rm -rf -- "$scratch"' EXIT

tree="$scratch/Φωτογραφίες 写真 📷"
store="$scratch/хранилище مخزن 🗄️"
folder='папка с файлами'
names=(
    'with blanks  in a row.txt' 'Größe.txt' 'Ελληνικά.txt' 'Кириллица.txt' 'עברית.txt' 'العربية.txt' 'हिन्दी.txt'
    'ไทย.txt' '漢字.txt' 'ひらがな カタカナ.txt' '한국어.txt' '😀👩‍👩‍👧.txt' 'photo 2.jpg' 'photo 10.jpg'
)
mkdir -p "$tree/$folder"
for name in "${names[@]}"; do
    printf '%s' "$name" | tee "$tree/$name" >"$tree/$folder/$name"
done
rows=$((2 + 2 * ${#names[@]}))

tool()
{
    printf '$ dbservice.exe'
    printf ' %q' "$@"
    printf '\n'
    "$wine" "$program" --folder "$store" "$@" | tr -d '\r' | tee "$scratch/out"
}

# expect WHAT WANTED FOUND
expect()
{
    [ "$2" = "$3" ] || { printf '%s should be\n%s\nand is\n%s\n' "$@" >&2; exit 1; }
}

names_listed() { sed -n 's/.*"name":"\([^"]*\)".*/\1/p' "$scratch/out" | sort; }

tool --json scan "$tree"
expect 'what the first scan adds' "\"added\":$rows" "$(grep -o '"added":[0-9]*' "$scratch/out")"
expect "$store" DriveModuleData.dat "$(ls "$store")"
tool --json scan "$tree"
expect 'what the second scan finds unchanged' "\"unchanged\":$rows" "$(grep -o '"unchanged":[0-9]*' "$scratch/out")"
tool --json ls / >/dev/null
expect 'the list of the root' "$(printf '%s\n' "$folder" "${names[@]}" | sort)" "$(names_listed)"
tool --json ls "/$folder" >/dev/null
expect "the list of /$folder" "$(printf '%s\n' "${names[@]}" | sort)" "$(names_listed)"
tool ls /
