#!/usr/bin/env bash
# check_install.sh CMAKE BUILD PICTURE CARRIES_DENOISER: installs the build to a temporary place, moves it, and uses it there.
set -euo pipefail
cmake=$1 build=$2 picture=$3 carries_denoiser=$4

place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
"$cmake" --install "$build" --prefix "$place/installed" >"$place/log"
mv "$place/installed" "$place/moved"

fail() {
    echo "$*" >&2
    exit 1
}
program=$place/moved/bin/zqx-img
[[ -f $place/moved/include/zqx/img/Image.h ]] || fail "the public headers are not installed"
[[ $(ldd "$program") == *"$place/moved/"*libzqx_img.so* ]] || fail "the program does not find its own library"
"$program" apply "$picture" -o "$place/graded.png" --set exposure=1
"$program" info "$place/graded.png" | grep --quiet PNG || fail "the written picture is not a PNG"
"$program" histogram "$picture" -o "$place/histogram.png" || fail "the program does not find its drawing module"

[[ $carries_denoiser == ON ]] || exit 0
render=$(dirname "$picture")/render
"$program" denoise "$render/color.exr" --albedo "$render/albedo.exr" --normal "$render/normal.exr" -o "$place/clean.exr"
[[ -s $place/clean.exr ]] || fail "nothing was denoised"
