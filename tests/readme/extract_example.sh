#!/usr/bin/env bash
# Prints the example of a language from a Markdown file: extract_example.sh LANGUAGE FILE
set -euo pipefail
sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/{/^\`\`\`/d;p}" "$2"
