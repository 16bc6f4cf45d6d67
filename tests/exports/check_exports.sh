#!/usr/bin/env bash
# Compares the defined dynamic symbols of a library with lists: check_exports.sh NM LIBRARY LIST...
set -euo pipefail
export LC_ALL=C
nm=$1 library=$2
shift 2
if ! diff --unified=0 <(cat "$@" | grep -v '^#' | sort -u) \
    <("$nm" --dynamic --defined-only --demangle "$library" | cut -d' ' -f3- | sort -u); then
    echo "The exported symbols differ from $* (- missing, + not listed)." >&2
    exit 1
fi
