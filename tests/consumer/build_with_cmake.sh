#!/usr/bin/env bash
# build_with_cmake.sh PREFIX WORK [COMPILER [FLAGS]]: builds the project in the folder WORK against the library under
# PREFIX, and runs it.
set -euo pipefail
prefix=$1 work=$2 compiler=${3:-c++} flags=${4:-}
cmake=${CMAKE:-cmake}
rm -rf "$work"
"$cmake" -S "$(dirname "${BASH_SOURCE[0]}")" -B "$work" -DCMAKE_BUILD_TYPE=Release -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$flags"
found=$(sed -n 's/^zqx_img_DIR:PATH=//p' "$work/CMakeCache.txt")
if [[ $found != "$prefix"/* ]]; then
    echo "CMake found $found, which is not under $prefix" >&2
    exit 1
fi
"$cmake" --build "$work"
"$(dirname "$(command -v "$cmake")")/ctest" --test-dir "$work" --no-tests=error --output-on-failure
