#!/usr/bin/env bash
# Shows in a quarter of a minute what the command-line tool is for: story.sh PROGRAM FOLDER
#
# FOLDER is only read. What is changed and scanned again is a working copy of one folder in it.
set -euo pipefail

program=$(realpath -- "$1")
whole=$(realpath -- "$2")
demo=build/demo
export DBSERVICE_FOLDER=$demo/store
tree=$demo/tree

# shellcheck source=common.sh
. "$(dirname -- "$0")/common.sh"

[ -d "$whole" ] || { echo "demo: $whole is not a folder" >&2; exit 1; }
rm -rf "$demo"
mkdir -p "$tree"

# As a person types it: in the first store, or in another.
tool() { tool_on '' "$@"; }
tool_on()
{
    printf '$ dbservice%s' "${1:+ --folder $1}"
    printf ' %q' "${@:2}"
    printf '\n'
    "$program" --quiet --folder "${1:-$DBSERVICE_FOLDER}" "${@:2}"
}

must_be() { [ "$2" = "$3" ] || { echo "demo: $1 should be $3 and is $2" >&2; exit 1; }; }

say "1. A real folder goes into a store: $whole, with every name, size and time in it."
tool scan "$whole" || echo 'Not all of it could be read; the rest is there.'

source=$whole
full=$(fullest_folder)
say '2. A client shows lists page by page. The second page of five, by name:'
tool ls "${full:-/}" --offset 5 --count 5
say '   The largest pictures, wherever they are:'
tool view picture --sort -size --count 5

# A folder of some hundred entries, or the first.
part=$(find "$whole" -mindepth 1 -maxdepth 1 -type d -exec du --inodes -s {} + 2>/dev/null | sort -n |
    awk -F '\t' '$1 < 3000 { last = $2 } END { print last }')
source=${part:-$whole}
copy_without_contents
changed=$demo/changed
DBSERVICE_FOLDER=$changed "$program" --quiet scan "$tree" >/dev/null
say "3. A working copy of $source is in a store of its own. Now three files come, one goes, one grows:"
mkdir "$tree/new"
touch "$tree/new"/photo-{1..3}.jpg
mapfile -t files < <(find "$tree" -type f -not -path '*/new/*' | sort | awk 'NR <= 2')
if [ ${#files[@]} -eq 2 ]; then
    rm "${files[0]}"
    truncate --size +1000 "${files[1]}"
fi
tool_on "$changed" scan "$tree"

say '4. A user renames a photo. The list shows the new name at once; the cloud has yet to be told.'
tool_on "$changed" rename /new/photo-1.jpg sunrise.jpg
tool_on "$changed" ls /new
tool_on "$changed" pending

say '5. Four threads post transfers to a module at once; every row is looked for afterwards.'
"$program" --quiet init >/dev/null
tool transfers simulate 40

legacy=$demo/legacy.dat
"$(dirname -- "$program")/legacysample" --clean "$legacy" 5000
say '6. A file of the earlier client generation comes over, and comes over once.'
tool_on "$demo/migrated" migrate "$legacy" --gallery gallery.dat
tool_on "$demo/migrated" migrate "$legacy" --gallery gallery.dat --again | sed -n '1,/GalleryFile/p'
"$(dirname -- "$program")/legacysample" "$demo/ugly.dat" 500
ended=0
DBSERVICE_FOLDER=$demo/ugly "$program" --quiet migrate "$demo/ugly.dat" --gallery gallery.dat \
    >"$demo/ugly.log" 2>&1 || ended=$?
must_be 'the exit code for a file whose rows cannot all be read' "$ended" 1
echo "Of a file with broken rows the tool saves the others and names what is lost ($demo/ugly.log):"
tail -n 1 "$demo/ugly.log"

say '7. All of it on one page, for a browser:'
tool report "$demo/report.html"

cat <<EOF

All is as expected. The stores lie in $demo; try next:
  export DBSERVICE_FOLDER=$PWD/$demo/store
  $program ls /
  $program --help
  make demo-full
EOF
