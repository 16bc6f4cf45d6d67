#!/usr/bin/env bash
# check.sh FOLDER: installs the Debian packages in FOLDER, uses them as somebody would who has nothing else of ours, and
# removes them again. Takes root.
set -euo pipefail
packages=("$(realpath "$1")"/*.deb)
project=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../..")
multiarch=$(dpkg-architecture --query DEB_HOST_MULTIARCH)
readonly packages project multiarch

# What has to be in which package. Files marked "later" are reported while they are missing; the mark goes when they
# come.
EXPECTED_FILES="
libzqx-img1     /usr/lib/$multiarch/libzqx_img.so.1
libzqx-img1     /usr/lib/$multiarch/libzqx_platform.so.1
libzqx-img1     /usr/share/doc/libzqx-img1/copyright
libzqx-img1     /usr/share/doc/libzqx-img1/changelog.Debian.gz
libzqx-img-dev  /usr/include/zqx/img/Image.h
libzqx-img-dev  /usr/include/zqx/qfreeimage/IFreeImage.h
libzqx-img-dev  /usr/include/zqx-platform-1/qutil/InterfaceAdapter.h
libzqx-img-dev  /usr/include/zqx-platform-1/tov/Module.h
libzqx-img-dev  /usr/lib/$multiarch/libzqx_img.so
libzqx-img-dev  /usr/lib/$multiarch/libzqx_platform.so
libzqx-img-dev  /usr/lib/$multiarch/cmake/zqx_img/zqx_imgConfig.cmake
libzqx-img-dev  /usr/lib/$multiarch/pkgconfig/zqx_img.pc
libzqx-img-dev  /usr/lib/$multiarch/pkgconfig/zqx_platform.pc
libzqx-img-dev  /usr/share/doc/libzqx-img-dev/copyright
libzqx-img-doc  /usr/share/doc/libzqx-img-doc/README.md
libzqx-img-doc  /usr/share/doc/libzqx-img-doc/SECURITY.md
libzqx-img-doc  /usr/share/doc/libzqx-img-doc/docs/parameters.md
libzqx-img-doc  /usr/share/doc/libzqx-img-doc/examples/host/main.cpp
libzqx-img-doc  /usr/share/doc/libzqx-img-doc/reference/index.html
libzqx-img-doc  /usr/share/doc/libzqx-img-doc/copyright
zqx-img         /usr/bin/zqx-img
zqx-img         /usr/share/doc/zqx-img/copyright
zqx-img         /usr/share/man/man1/zqx-img.1.gz
zqx-img         /usr/share/bash-completion/completions/zqx-img
zqx-img         /usr/share/zsh/vendor-completions/_zqx-img
zqx-img         /usr/share/fish/vendor_completions.d/zqx-img.fish
zqx-img         /usr/share/zqx_img/parameters.schema.json
"
# Each library above the engine is in a package of its own.
for library in pictures tools; do
    EXPECTED_FILES+="
libzqx-${library}0  /usr/lib/$multiarch/libzqx_$library.so.0
libzqx-${library}0  /usr/share/doc/libzqx-${library}0/copyright
libzqx-${library}0  /usr/share/doc/libzqx-${library}0/changelog.Debian.gz
libzqx-img-dev  /usr/include/zqx/$library/Export.h
libzqx-img-dev  /usr/lib/$multiarch/libzqx_$library.so
libzqx-img-dev  /usr/lib/$multiarch/cmake/zqx_img/zqx_${library}Targets.cmake
libzqx-img-dev  /usr/lib/$multiarch/pkgconfig/zqx_$library.pc
"
done
readonly EXPECTED_FILES

say() {
    echo "check: $*"
}

fail() {
    say "$*" >&2
    exit 1
}

as_root=()
if ((EUID != 0)); then
    sudo -n true 2>/dev/null || fail "installing the packages takes root, so they cannot be tried here. Run: sudo $0 $1"
    as_root=(sudo -n)
fi
apt() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0 "$@"
}

is_installed() {
    [[ $(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

added=()
work=$(mktemp -d)
clean_up() {
    rm -rf "$work"
    if ((${#added[@]})); then
        say "removing ${added[*]}"
        apt purge --yes "${added[@]}" >/dev/null
    fi
}
trap clean_up EXIT

install_packages() {
    local package name
    for package in "${packages[@]}"; do
        name=$(dpkg-deb --field "$package" Package)
        if is_installed "$name"; then
            say "$name is installed already: it is replaced by the one to be checked, and left there"
        else
            added+=("$name")
        fi
    done
    apt install --yes --no-install-recommends --reinstall --allow-downgrades "${packages[@]}"
}

# Looks into the packages, since a machine may be set up to leave manual pages and documents out.
check_files() {
    local package file mark archive contents
    while read -r package file mark; do
        [[ -n $package ]] || continue
        archive=$(compgen -G "${packages[0]%/*}/${package}_*.deb") || fail "there is no package $package"
        contents=$(dpkg-deb --fsys-tarfile "$archive" | tar --list)
        if grep --quiet --line-regexp --fixed-strings ".$file" <<<"$contents"; then
            [[ -z $mark ]] || fail "$file has come: its mark '$mark' has to go"
        elif [[ $mark == later ]]; then
            say "not in $package yet: $file"
        else
            fail "$package does not have $file"
        fi
    done <<<"$EXPECTED_FILES"
}

# Programs and libraries are found by the system's means, and do not tell where they were built.
check_binaries() {
    local file
    for file in /usr/bin/zqx-img "/usr/lib/$multiarch"/libzqx_*.so.?; do
        [[ -f $file ]] || fail "$file is missing"
        [[ $file != *.so.* ]] || ! ldd "$file" | grep --ignore-case exiv2 || fail "$file links Exiv2"
        ! readelf --dynamic "$file" | grep -E 'R(UN)?PATH' >/dev/null || fail "$file has a run path"
        ! grep --quiet --fixed-strings "$project" "$file" || fail "$file names $project"
    done
    ldconfig --print-cache | grep --fixed-strings "libzqx_img.so.1 " >/dev/null ||
        fail "the loader does not know libzqx_img"
}

check_program() {
    local version
    version=$(dpkg-query --show --showformat='${source:Upstream-Version}' zqx-img)
    mkdir "$work/empty"
    cp "$project/assets/coffee.png" "$work/empty"
    (
        cd "$work/empty"
        export PATH=/usr/bin:/bin
        unset LD_LIBRARY_PATH
        zqx-img --version
        zqx-img --version | grep --word-regexp --fixed-strings "$version" >/dev/null ||
            fail "that is not version $version"
        zqx-img apply coffee.png -o graded.jpg --set exposure=0.5
        zqx-img info graded.jpg
        zqx-img info graded.jpg | grep JPEG >/dev/null || fail "the graded picture is no JPEG"
    )
}

check_consumer() {
    unset PKG_CONFIG_PATH LD_LIBRARY_PATH
    "$project/tests/consumer/build_with_cmake.sh" /usr "$work/consumer-cmake"
    "$project/tests/consumer/build_with_pkg_config.sh" /usr "$work/consumer-pkg-config"
}

[[ -f ${packages[0]} ]] || fail "there are no packages in $1"
check_files
install_packages
check_binaries
check_program
check_consumer
say "the packages work"
