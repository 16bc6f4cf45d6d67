#!/usr/bin/env bash
# What fish answers to a half-typed line: check_fish.sh MANUAL
set -euo pipefail
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT

# expect PATTERN LINE
expect() {
    local answers
    answers=$(HOME=$home fish -c "source $1/fish/zqx-img.fish; complete -C 'zqx-img $3'")
    [[ $answers == $2 ]] || { echo "zqx-img $3: got '$answers'" >&2; exit 1; }
}
expect "$1" 'apply*' app
expect "$1" '*--params*' 'apply --par'
expect "$1" 'exposure=*' 'apply in.png --set expo'
expect "$1" 'histogram*' 'help hist'
