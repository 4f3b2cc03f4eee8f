#!/usr/bin/env bash
# Shows the command-line tool at work on a real folder, with all of its commands: full.sh PROGRAM FOLDER
#
# FOLDER is only read. What is changed and scanned again is a working copy of it under build/demo with the same names,
# sizes and times and without the contents, which the store does not look at. It is made in a second or two and takes
# no space to speak of, however large FOLDER is.
set -euo pipefail

program=$1
source=$(realpath -- "$2")
demo=build/demo
store=$demo/store
tree=$demo/tree
tree_store=$demo/tree-store
pictures=$demo/pictures

# shellcheck source=common.sh
. "$(dirname -- "$0")/common.sh"

# Up to 500 of the pictures, with their folders; a few made-up files where there are none.
collect_pictures()
{
    mkdir -p "$pictures"
    { find "$source" -type f -size -1000k \( -name '*.png' -o -name '*.jpg' \) -readable -printf '%P\0' 2>/dev/null ||
        true; } | sort -z | perl -0 -ne 'print if $. <= 500' |
        { cd "$source" && xargs -0r cp --parents --preserve=timestamps -t "$OLDPWD/$pictures" 2>/dev/null || true; }
    if [ -z "$(ls -A "$pictures")" ]; then
        mkdir "$pictures/2024"
        for name in beach.jpg 2024/sunrise.jpg 2024/sunset.mp4; do
            echo "made up: $name" >"$pictures/$name"
        done
    fi
}

[ -d "$source" ] || { echo "demo: $source is not a folder" >&2; exit 1; }

rm -rf "$demo"
mkdir -p "$tree"

say "The whole of $source goes into a fresh store; the folder is only read."
run "$program" --folder "$store" scan "$source" || echo 'Not all of it could be read; the rest is there.'

say 'What is in it, as in a file system:'
run "$program" --folder "$store" ls / --count 12
full=$(fullest_folder)
if [ -n "$full" ]; then
    say 'A folder with many entries is read page by page, folders first; here the second page of ten by name.'
    run "$program" --folder "$store" ls "$full" --offset 10 --count 10
    say 'And the largest ones first:'
    run "$program" --folder "$store" ls "$full" --sort -size --count 10
    run "$program" --folder "$store" stat "$full"
fi
run "$program" --folder "$store" count
say 'The largest pictures, wherever they are:'
run "$program" --folder "$store" view picture --sort -size --count 5

say "To change something, a working copy of $source, in names, sizes and times, and a store for it."
copy_without_contents
echo "$(find "$tree" | wc -l) files and folders in $tree"
run "$program" --folder "$tree_store" scan "$tree"

say 'Now the folder changes: a whole subtree goes, five files come, one file grows and one gets another name.'
mapfile -t folders < <(top_folders)
if [ ${#folders[@]} -gt 0 ]; then
    run rm -r "${folders[${#folders[@]} > 2 ? 2 : 0]}"
fi
run mkdir "$tree/new-in-the-demo"
run touch "$tree/new-in-the-demo"/photo-{1..5}.jpg
mapfile -t files < <(find "$tree" -maxdepth 3 -type f -not -path '*/new-in-the-demo/*' | sort | awk 'NR <= 2')
if [ ${#files[@]} -eq 2 ]; then
    run truncate --size +1000 "${files[0]}"
    run mv "${files[1]}" "${files[1]}.renamed"
fi

say 'The second scan brings the store up to date and tells what it found.'
run "$program" --folder "$tree_store" scan "$tree"
run "$program" --folder "$tree_store" count

say 'The tree in the store changes as a client changes it: rows are marked, and wait to be carried to the cloud.'
album=/new-in-the-demo
run "$program" --folder "$tree_store" mkdir "$album/best"
run "$program" --folder "$tree_store" rename "$album/photo-1.jpg" sunrise.jpg
run "$program" --folder "$tree_store" mv "$album/sunrise.jpg" "$album/best"
run "$program" --folder "$tree_store" rename "$album/photo-2.jpg" sunset.jpg
run "$program" --folder "$tree_store" rm "$album/photo-3.jpg" "$album/photo-4.jpg"
run "$program" --folder "$tree_store" restore "$album/photo-3.jpg"
say 'What lists show meanwhile, and what waits:'
run "$program" --folder "$tree_store" ls "$album"
run "$program" --folder "$tree_store" pending

say 'Beside the drive lie the other stores; init makes what is missing of them.'
run "$program" --folder "$tree_store" init --gallery gallery.dat
say "The client's settings and its shortcuts:"
run "$program" --folder "$tree_store" properties set SyncCloudFolder "$tree"
run "$program" --folder "$tree_store" properties set greeting "it's \"写真\""
run "$program" --folder "$tree_store" properties list
run "$program" --folder "$tree_store" shortcuts add --title Sunrise --path "$album/best/sunrise.jpg" --index 2
run "$program" --folder "$tree_store" shortcuts add --title Best --tip 'The best ones' --path "$album/best" --index 1
run "$program" --folder "$tree_store" shortcuts remove 2
run "$program" --folder "$tree_store" shortcuts list

say 'Transfers go into their store through a module with a thread; four threads post some, and every row is looked for.'
run "$program" --folder "$tree_store" transfers simulate 40
run "$program" --folder "$tree_store" transfers add download --name sunset.jpg --size 2048000 --path "$album/sunset.jpg"
run "$program" --folder "$tree_store" transfers list --downloads

collect_pictures
say 'Pictures become rows of the gallery, an album per folder; a second import reads only what changed.'
run "$program" --folder "$tree_store" gallery import "$pictures" --gallery gallery.dat
run "$program" --folder "$tree_store" gallery import "$pictures" --gallery gallery.dat
run "$program" --folder "$tree_store" gallery counts --gallery gallery.dat
say 'And its tables go again.'
run "$program" --folder "$tree_store" reset --gallery gallery.dat --yes

say 'A made-up file of the earlier client generation, ugly rows and all, and a store in which some keys are taken:'
run "$(dirname -- "$program")/legacysample" "$demo/legacy.dat" 5000 "$demo/migrated" gallery.dat
say 'What would come over, and what would be lost; then the migration itself. Exit code 1 says that rows were lost.'
run "$program" --folder "$demo/migrated" migrate "$demo/legacy.dat" --gallery gallery.dat --dry-run || echo "Exit code $?"
run "$program" --folder "$demo/migrated" migrate "$demo/legacy.dat" --gallery gallery.dat || echo "Exit code $?"
run "$program" --folder "$demo/migrated" properties list
say 'Done twice, nothing comes twice.'
run "$program" --folder "$demo/migrated" migrate "$demo/legacy.dat" --gallery gallery.dat
run "$program" --folder "$demo/migrated" migrate "$demo/legacy.dat" --gallery gallery.dat --again --quiet ||
    echo "Exit code $?"
