#!/usr/bin/env bash
# build_with_pkg_config.sh PREFIX WORK [COMPILER [FLAGS]]: builds the project's programs in the folder WORK by the
# compiler alone, with what pkg-config says of the library under PREFIX, and runs them. Where PREFIX is not the
# system's, PKG_CONFIG_PATH and LD_LIBRARY_PATH lead there.
set -euo pipefail
prefix=$1 work=$2 compiler=${3:-c++} flags=${4:-}
sources=$(dirname "${BASH_SOURCE[0]}")
rm -rf "$work"
mkdir -p "$work"

libraries=$(realpath "$(pkg-config --variable=libdir zqx_img)")
if [[ $libraries != "$prefix"/* ]]; then
    echo "pkg-config found $libraries, which is not under $prefix" >&2
    exit 1
fi
pkg-config --exact-version="$(pkg-config --modversion zqx_platform)" zqx_img

# try PROGRAM PACKAGE ARGUMENT...: builds the program with the package, and runs it.
try() {
    local package_flags
    read -ra package_flags <<<"$(pkg-config --cflags --libs "$2")"
    # shellcheck disable=SC2086 # several flags
    (set -x && "$compiler" -std=c++17 -Wall -Wextra -Wpedantic -Werror $flags "$sources/$1.cpp" -o "$work/$1" \
        "${package_flags[@]}")
    "$work/$1" "${@:3}"
}
try grade zqx_img
try entry zqx_img
try keep zqx_pictures "$work/kept.png"
try adjust zqx_tools
if [[ -e $libraries/libzqx_img.so ]]; then # what is static cannot be loaded as a module
    try host zqx_platform "$libraries/libzqx_img.so"
fi
