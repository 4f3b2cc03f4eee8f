# What the two demonstrations share; they set `source` and `tree`.

say() { printf '\n# %s\n' "$*"; }

run()
{
    printf '$'
    printf ' %q' "$@"
    printf '\n'
    "$@"
}

# Copies names, kinds, modes, times and links, then gives every file its size. What may not be read is left out.
copy_without_contents()
{
    cp -a --no-preserve=ownership --attributes-only "$source/." "$tree" 2>/dev/null || true
    chmod -R u+rwX "$tree"
    { find "$source" -type f -size +0 -printf '%s\t%T@\t%P\0' 2>/dev/null || true; } |
        (cd "$tree" && perl -0 -ne '
            chomp;
            my ($size, $time, $path) = split /\t/, $_, 3;
            truncate $path, $size and utime $time, $time, $path;')
}

# The folders at the top, the one with the most entries in its whole subtree first.
top_folders() { find "$tree" -mindepth 1 -maxdepth 1 -type d -exec du --inodes -s {} + | sort -rn | cut -f2; }

# The folder with the most entries of its own, as the store names it.
fullest_folder()
{
    { find "$source" -mindepth 2 -printf '/%P\n' 2>/dev/null || true; } |
        sed 's|/[^/]*$||' | sort | uniq -c | sort -rn |
        awk 'NR == 1 { sub(/^ *[0-9]+ /, ""); print }'
}
