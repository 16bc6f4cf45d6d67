#!/usr/bin/env bash
# Manual pages without anything that mandoc or groff find fault with: check_pages.sh MANUAL PROGRAM
set -euo pipefail
pages=("$1"/man1/*.1)
((${#pages[@]} > 5)) || { echo "there are only ${#pages[@]} pages" >&2; exit 1; }
mandoc -T lint -W warning "${pages[@]}"
for page in "${pages[@]}"; do
    for section in NAME SYNOPSIS DESCRIPTION OPTIONS "EXIT STATUS" "SEE ALSO"; do
        grep --quiet "^\.SH $section\$" "$page" || { echo "$page has no section $section" >&2; exit 1; }
    done
done
