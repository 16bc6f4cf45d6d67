#!/usr/bin/env bash
# No source calls the transcendental functions of the system's mathematics library, whose last bits differ from system
# to system: kernels/maths/ScalarMaths.h has those of single numbers, kernels/maths/Maths-inl.h those of vectors.
# What IEEE 754 defines to the last bit may be called: sqrt, fma, floor, ldexp, nextafter and the like.
#
# check_mathematics.sh PROJECT FOLDER...
set -euo pipefail
export LC_ALL=C
cd "$1"
shift

readonly NAMES='(a?(sin|cos|tan)h?|atan2|exp(2|10|m1)?|log(2|10|1p)?|pow|cbrt|hypot|erfc?|[lt]gamma)[fl]?'
# By name with std:: or ::, or a call without either, unless the vector functions' tag d is its first argument.
readonly CALL="(\\bstd::|(?<![\\w:])::)$NAMES\\b|(?<![\\w:.>\"])$NAMES\\((?!d, )"

# Here the functions are made; they call each other.
readonly MADE_HERE='^src/zqx/img/kernels/maths/(ScalarMaths\.(h|cpp)|Maths-inl\.h):'

# Prints "file:line:code" of every call in a folder; comments and texts do not count.
calls_in() {
    find "$@" -name '*.h' -o -name '*.cpp' | sort | while read -r file; do
        sed -e 's#//.*##' -e 's/"[^"]*"/""/g' "$file" | grep --perl-regexp --line-number "$CALL" | sed "s#^#$file:#" || true
    done
}

# What finds nothing proves nothing: the search is tried on lines that it has to find, and on others.
sample=$(mktemp -d)
trap 'rm -rf "$sample"' EXIT
cat >"$sample/calls.cpp" <<'TEXT'
double a = std::pow(x, 2.2);
float b = powf(x, y) + ::expf(y);
const auto c = std::transform(begin, end, begin, std::log2);
double d = 1.0 + atan2(y, x);
TEXT
cat >"$sample/others.cpp" <<'TEXT'
double a = maths::pow(x, 2.2) + std::sqrt(x) + std::floor(x);
auto b = exp2(d, x); // std::exp(x)
logger.log(text); log->exp(text); print("tan(x)"); catalog(x); const double power = expose(x);
TEXT
if [[ $(calls_in "$sample/calls.cpp" | wc -l) != 4 || -n $(calls_in "$sample/others.cpp") ]]; then
    echo 'The search for calls is at fault: of its own samples it finds' >&2
    calls_in "$sample" >&2
    exit 1
fi

found=$(calls_in "$@" | grep --invert-match --extended-regexp "$MADE_HERE" || true)
if [[ -n $found ]]; then
    printf 'These lines call the system, take the functions of kernels/maths/ScalarMaths.h:\n%s\n' "$found" >&2
    exit 1
fi
