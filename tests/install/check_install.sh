#!/usr/bin/env bash
# check_install.sh CHECK TREE ...: what is true of an installed tree that was moved. The first check makes the tree.
set -euo pipefail
check=$1 tree=$2
shift 2

fail() {
    echo "$*" >&2
    exit 1
}

# make CMAKE BUILD: installs the build and moves what comes of it.
make() {
    rm -rf "$tree" "$tree-installed"
    "$1" --install "$2" --prefix "$tree-installed"
    mv "$tree-installed" "$tree"
}

# program_runs PICTURE CARRIES_DENOISER
program_runs() {
    local program=$tree/bin/zqx-img place render
    place=$tree-pictures
    rm -rf "$place"
    mkdir "$place"
    [[ $(ldd "$program") == *"$tree/"*libzqx_img.so* ]] || fail "the program does not find its own library"
    "$program" apply "$1" -o "$place/graded.png" --set exposure=1
    "$program" apply "$1" -o "$place/isolated.png" --set exposure=1 --isolate
    cmp "$place/graded.png" "$place/isolated.png" || fail "decoding in a process of its own gives another picture"
    "$program" histogram "$1" -o "$place/histogram.png" || fail "the program does not find its drawing module"
    "$program" info "$place/graded.png" | grep PNG >/dev/null || fail "the written picture is not a PNG"
    [[ $2 == ON ]] || return 0
    render=$(dirname "$1")/render
    "$program" denoise "$render/color.exr" --albedo "$render/albedo.exr" --normal "$render/normal.exr" \
        -o "$place/clean.exr"
    [[ -s $place/clean.exr ]] || fail "nothing was denoised"
}

# names_no_folder FOLDER...: no text and no run path leads out of the tree.
names_no_folder() {
    local folder binaries file runpath
    for folder in "$@" "$tree" "$tree-installed"; do
        ! grep --recursive --binary-files=without-match --fixed-strings --line-number -e "$folder" "$tree" ||
            fail "text in the installed tree names $folder"
    done
    binaries=$(own_binaries)
    while read -r file; do
        runpath=$(readelf --dynamic "$file" | sed -n 's/.*R\(UN\)\?PATH.*\[\(.*\)\]/\2/p')
        [[ $runpath =~ ^\$ORIGIN(/[^:]*)?$ ]] || fail "$file: its run path is '$runpath'"
    done <<<"$binaries"
}

# Programs and libraries that are ours, not links to them.
own_binaries() {
    local file found=()
    while read -r file; do
        [[ $(head --bytes=4 "$file" | tr -d '\0') == $'\x7fELF' ]] && found+=("$file")
    done < <(find "$tree" -type f \( -name 'libzqx_*' -o -path '*/bin/*' -o -path '*/libexec/*' \))
    ((${#found[@]} >= 3)) || fail "programs and libraries are missing: ${found[*]}"
    printf '%s\n' "${found[@]}"
}

# libraries_are_versioned LIBRARY_FOLDER NAME=VERSION...
libraries_are_versioned() {
    local name version major library=$tree/$1 found expected
    shift
    expected=$(printf '%s\n' "$@" | cut -d= -f1 | sort)
    found=$(cd "$library" && find . -maxdepth 1 -name 'libzqx_*.so' -printf '%f\n' | sed 's/^lib//; s/\.so$//' | sort)
    [[ $found == "$expected" ]] || fail "these libraries are installed: $found"
    while IFS== read -r name version; do
        name=lib$name.so major=${version%%.*}
        [[ $(readlink "$library/$name") == "$name.$major" ]] || fail "$name is no link to $name.$major"
        [[ $(readlink "$library/$name.$major") == "$name.$version" ]] ||
            fail "$name.$major is no link to $name.$version"
        [[ -f $library/$name.$version && ! -L $library/$name.$version ]] || fail "$name.$version is missing"
        readelf --dynamic "$library/$name.$version" | grep --fixed-strings "soname: [$name.$major]" >/dev/null ||
            fail "$name.$version: its name is not $name.$major"
    done < <(printf '%s\n' "$@")
}

# links_no_exiv2 LIBRARY_FOLDER: its licence is the GPL, which would become that of every program that links one of ours.
# What the libraries need directly or by others, and what they expect a program to bring, is without it.
links_no_exiv2() {
    local library count=0
    while read -r library; do
        ! LD_LIBRARY_PATH=$tree/$1 ldd "$library" | grep --ignore-case exiv2 || fail "$library links Exiv2"
        ! nm --dynamic --demangle "$library" | grep Exiv2:: || fail "$library has symbols of Exiv2"
        count=$((count + 1))
    done < <(find "$tree/$1" -maxdepth 1 -type f -name 'libzqx_*.so.*')
    ((count >= 2)) || fail "there are only $count libraries in $tree/$1"
    ldd "$tree/bin/zqx-img" | grep --ignore-case exiv2 >/dev/null || fail "not even the program links Exiv2: this check is blind"
}

# every_file_has_a_component CMAKE BUILD COMPONENT...: together they are all there is, and none has another's files.
every_file_has_a_component() {
    local cmake=$1 build=$2 component parts=$tree-components
    shift 2
    rm -rf "$parts"
    for component in "$@"; do
        "$cmake" --install "$build" --prefix "$parts/$component" --component "$component"
        [[ -n $(find "$parts/$component" -type f) ]] || fail "there is nothing in the component $component"
    done
    diff <(cd "$tree" && find . ! -type d | sort) \
        <(cd "$parts" && find . ! -type d | cut -d/ -f3- | sed 's,^,./,' | sort) ||
        fail "components differ from the whole"
}

# headers_compile COMPILER PLATFORM: each installed header alone, as C++17. What they include is in the tree or standard.
# The headers of the runtimes are in the folder PLATFORM and nowhere else, as their names are short.
headers_compile() {
    local compiler=$1 platform=$2 folder header name
    [[ $(ls "$tree/include") == $(printf 'zqx\n%s' "$platform") ]] ||
        fail "there are other headers than expected: $(ls "$tree/include")"
    for folder in "$tree/include/$platform" "$tree/include"; do
        while read -r header; do
            while read -r name; do
                [[ -f $tree/include/$name || -f $tree/include/$platform/$name || $name =~ ^[a-z0-9_]+$ ||
                    $name == @(windows|eh).h ]] || fail "$header includes $name, which is not installed"
            done < <(sed -n 's/^ *# *include *[<"]\(.*\)[>"].*/\1/p' "$folder/$header")
            "$compiler" -std=c++17 -pedantic-errors -fsyntax-only -I "$tree/include" -I "$tree/include/$platform" \
                -x c++ - <<<"#include <$header>" || fail "$header does not compile alone"
        done < <(cd "$folder" && find -- * -name '*.h' -not -path "$platform/*")
    done
}

# examples_build CMAKE COMPILER FLAGS: each example by itself.
examples_build() {
    local example count=0
    while read -r example; do
        rm -rf "$tree-example"
        "$1" -S "${example%/*}" -B "$tree-example" -DCMAKE_PREFIX_PATH="$tree" -DCMAKE_CXX_COMPILER="$2" \
            -DCMAKE_CXX_FLAGS="${3:-}"
        "$1" --build "$tree-example"
        count=$((count + 1))
    done < <(find "$tree/share/doc" -path '*/examples/*/CMakeLists.txt')
    ((count >= 2)) || fail "there are only $count examples"
}

# versions_match CMAKE SCRIPT VERSION: the CMake package takes requests for its own major version only.
versions_match() {
    local major=${3%%.*} wanted
    for wanted in "$major.0" "$3"; do
        "$1" -DTREE="$tree" -DWANTED="$wanted" -DEXPECTED=ON -P "$2"
    done
    for wanted in $((major - 1)).9 $((major + 1)).0 "$major.999"; do
        "$1" -DTREE="$tree" -DWANTED="$wanted" -DEXPECTED=OFF -P "$2"
    done
}

"$check" "$@"
