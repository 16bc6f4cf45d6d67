#!/usr/bin/env bash
# Each test that SECURITY.md names is there: check_security.sh PROJECT
set -euo pipefail
cd "$1"
named=$(grep -o '`[A-Za-z]*\.[A-Z][A-Za-z0-9]*`' SECURITY.md | tr -d '`' | sort -u)
(($(wc -l <<<"$named") >= 20)) || {
    echo "SECURITY.md names too few tests: $named" >&2
    exit 1
}
missing=()
while IFS=. read -r suite name; do
    grep --recursive --quiet --extended-regexp \
        "TEST(_F|_P)?\($suite, *$name\)|NAME $suite\.$name\b|add_install_check\($name\b" tests --include='*.cpp' --include=CMakeLists.txt ||
        missing+=("$suite.$name")
done <<<"$named"
((${#missing[@]} == 0)) || {
    echo "SECURITY.md names tests that do not exist: ${missing[*]}" >&2
    exit 1
}
