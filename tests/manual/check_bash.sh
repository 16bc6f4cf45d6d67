#!/usr/bin/env bash
# What bash answers to a half-typed line: check_bash.sh MANUAL
set -euo pipefail
# Outside of an interactive completion there is nothing to tell about the answers.
compopt() { :; }
source "$1/bash/zqx-img"

place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
cd "$place"
mkdir pictures
touch "two words.png"

# expect ANSWERS WORD...: the last word is the one that is being typed
expect() {
    local expected=$1
    shift
    COMP_WORDS=(zqx-img "$@")
    COMP_CWORD=$#
    _zqx_img
    local answers
    answers=$(printf '%s\n' "${COMPREPLY[@]}")
    [[ $answers == "$expected" ]] || { echo "zqx-img $*: got '$answers', expected '$expected'" >&2; exit 1; }
}
expect apply app
expect $'preview\nparams' p
expect --params apply --par
expect exposure= apply in.png --set expo
expect "two words.png" apply two
expect "two words.png" apply in.png -o two
expect pictures apply in.png --output-dir pic
expect "" apply in.png --quality 9
expect histogram help hist
