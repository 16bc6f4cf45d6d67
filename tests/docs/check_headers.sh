#!/usr/bin/env bash
# Everything in the public headers is documented, truly as far as a program can tell: check_headers.sh DOXYGEN PROJECT
set -euo pipefail
doxygen=$1
cd "$2"
output=$(mktemp -d)
trap 'rm -rf "$output"' EXIT

# Macros and what is outside of namespaces are looked at only in files that are documented themselves.
unnamed=$(grep --recursive --files-without-match --include='*.h' '^/// @file$' include platform/include || true)
if [[ -n $unnamed ]]; then
    printf 'These headers do not begin with a comment that opens with @file:\n%s\n' "$unnamed" >&2
    exit 1
fi

{
    cat docs/site/Doxyfile
    # The headers alone, and no pages: what counts is what is said on the way.
    echo 'INPUT = docs/site/groups.dox include platform/include'
    echo 'USE_MDFILE_AS_MAINPAGE ='
    echo 'GENERATE_HTML = NO'
    echo 'GENERATE_XML = YES'
} | ZQX_DOCS_OUTPUT=$output ZQX_VERSION=none "$doxygen" - 2>&1 | sort --unique >&2 # templates are reported per instance
grep --quiet 'zqx::img::Image' "$output/xml/index.xml" # it did read the headers

# Doxygen does not miss descriptions of enumerators.
bare=$(awk -F '[<>]' '
    /<enumvalue / { described = 0 }
    /<name>/ { name = $3 }
    /<para>/ { described = 1 }
    /<\/enumvalue>/ && !described { print name }' "$output"/xml/*.xml | sort --unique)
if [[ -n $bare ]]; then
    printf 'These enumerators are not documented:\n%s\n' "$bare" >&2
    exit 1
fi
