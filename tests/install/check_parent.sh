#!/usr/bin/env bash
# check_parent.sh PROJECT WORK CMAKE COMPILER: another project builds the library with its own, statically, and nothing
# that it does not link; then it installs the libraries, and programs are built against these.
set -euo pipefail
project=$1 work=$2 cmake=$3 compiler=$4
here=$(dirname "$(readlink -f "$0")")

fail() {
    echo "$*" >&2
    exit 1
}

# configure OPTION...: without optimisation, since what counts is that it links.
configure() {
    "$cmake" -G Ninja -S "$here/parent" -B "$work/build" -DZQX_SOURCE="$project" -DCMAKE_CXX_COMPILER="$compiler" \
        -DCMAKE_CXX_FLAGS=-O0 -DBUILD_SHARED_LIBS=OFF "$@"
}

rm -rf "$work"
configure
"$cmake" --build "$work/build"
"$work/build/grade"
found=$(cd "$work/build" && find . -type f \( -name '*.a' -o -name '*.so*' -o -perm -u+x \) ! -path '*/CMakeFiles/*' -printf '%f\n' | sort | xargs)
[[ $found == "grade libzqx_img.a libzqx_kernels.a libzqx_platform.a" ]] || fail "this was built: $found"

configure -DZQX_INSTALL=ON
"$cmake" --build "$work/build"
"$cmake" --install "$work/build" --prefix "$work/tree"
[[ -z $(find "$work/tree" -name 'libzqx_*.so*') ]] || fail "shared libraries are among the static ones"
[[ -n $(find "$work/tree" -name 'libzqx_img.a') ]] || fail "the static library is not installed"
CMAKE=$cmake "$project/tests/consumer/build_with_cmake.sh" "$work/tree" "$work/consumer-cmake" "$compiler"
libraries=$(dirname "$(find "$work/tree" -name libzqx_img.a)")
PKG_CONFIG_PATH=$libraries/pkgconfig "$project/tests/consumer/build_with_pkg_config.sh" "$work/tree" \
    "$work/consumer-pkg-config" "$compiler"
