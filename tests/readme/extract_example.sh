#!/usr/bin/env bash
# Prints the checked examples of a language from a Markdown file, in their order: extract_example.sh LANGUAGE FILE
# An example is checked when the line before it says so: <!-- checked by tests/readme -->
set -euo pipefail
awk -v fence="\`\`\`$1" '
    inside && /^```$/ { inside = 0; next }
    inside { print }
    $0 == fence && checked { inside = 1 }
    { checked = ($0 == "<!-- checked by tests/readme -->") }' "$2"
