#!/usr/bin/env bash
# The list of folders in docs/architecture.md is true and complete, and no folder is crowded: check_architecture.sh PROJECT
set -euo pipefail
cd "$1"
readonly MOST_SOURCES=25

named=$(sed -n '/^## Where things are/,/^## /s,^\([A-Za-z0-9_/-]*/\)  *[^ ].*,\1,p' docs/architecture.md)
(($(wc -l <<<"$named") > 40)) || {
    echo "docs/architecture.md lists only: $named" >&2
    exit 1
}
# The folder of each source and header.
sources() {
    find include src apps platform tests examples bench -name '*.cpp' -printf '%h\n' -o -name '*.h' -printf '%h\n' | sort
}

complaints=()
while read -r folder; do
    [[ -d $folder ]] || complaints+=("docs/architecture.md names $folder, which does not exist.")
done <<<"$named"

# A stranger looks for a folder by its name: it is in the list, or below one that is.
while read -r folder; do
    above=$folder
    until [[ $above != */* ]] || grep --quiet --line-regexp --fixed-strings "$above/" <<<"$named"; do
        above=${above%/*}
    done
    grep --quiet --line-regexp --fixed-strings "$above/" <<<"$named" ||
        complaints+=("docs/architecture.md does not say what is in $folder.")
done < <(sources | uniq)

while read -r count folder; do
    ((count <= MOST_SOURCES)) ||
        complaints+=("$folder has $count sources and headers: more than $MOST_SOURCES are hard to survey.")
done < <(sources | uniq -c)

((${#complaints[@]} == 0)) || {
    printf '%s\n' "${complaints[@]}" >&2
    exit 1
}
