#!/usr/bin/env bash
# check_with_clang.sh CLANG FOLDERS WARNINGS SOURCE...: compiles sources that include one header each. Folders and
# warnings are lists with semicolons.
set -euo pipefail
clang=$1
IFS=';' read -ra folders <<<"$2"
IFS=';' read -ra warnings <<<"$3"
shift 3
if [[ ! -x $clang ]]; then
    echo "There is no Clang to look at the headers." >&2
    exit 77
fi
failures=0
for source in "$@"; do
    "$clang" -std=c++17 -fsyntax-only "${folders[@]/#/-I}" "${warnings[@]}" "$source" || failures=$((failures + 1))
done
if ((failures > 0)); then
    echo "$failures headers do not compile without warnings." >&2
    exit 1
fi
