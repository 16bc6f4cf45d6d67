#!/usr/bin/env bash
# The completion is sound zsh and can be loaded by its completion system: check_zsh.sh MANUAL
set -euo pipefail
zsh -n "$1/zsh/_zqx-img"
answer=$(FOLDER=$1/zsh zsh -f -c 'fpath=($FOLDER $fpath); autoload -U compinit; compinit -D -u; print $_comps[zqx-img]')
[[ $answer == _zqx-img ]] || { echo "zsh completes zqx-img by '$answer'" >&2; exit 1; }
