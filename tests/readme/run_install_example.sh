#!/usr/bin/env bash
# run_install_example.sh PROJECT TREE WORK COMPILER [FLAGS]: builds and runs the C++ example of README as its section on
# installation says. The library is the one installed in TREE; PKG_CONFIG_PATH and LD_LIBRARY_PATH lead there.
set -euo pipefail
extract=$(dirname "$(readlink -f "$0")")/extract_example.sh
readme=$1/README.md tree=$2 work=$3 compiler=$4 flags=${5:-}
rm -rf "$work"
mkdir -p "$work"
"$extract" cpp "$readme" >"$work/main.cpp"
"$extract" cmake "$readme" >"$work/CMakeLists.txt"
command=$("$extract" bash "$readme")
[[ $command == *g++* ]]

cmake -S "$work" -B "$work/build" -DCMAKE_PREFIX_PATH="$tree" -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_CXX_FLAGS="$flags"
cmake --build "$work/build"
"$work/build/grade"

cd "$work"
bash -euxc "${command//g++/$compiler $flags}"
./grade
