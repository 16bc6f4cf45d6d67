#!/usr/bin/env bash
# Compares the defined dynamic symbols of a library with a list: check_exports.sh NM LIBRARY LIST
set -euo pipefail
export LC_ALL=C
if ! diff --unified=0 <(grep -v '^#' "$3" | sort -u) \
    <("$1" --dynamic --defined-only --demangle "$2" | cut -d' ' -f3- | sort -u); then
    echo "The exported symbols differ from $3 (- missing, + not listed)." >&2
    exit 1
fi
