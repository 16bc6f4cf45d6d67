#!/usr/bin/env bash
# Runs the shell example of README in an empty folder: run_shell_example.sh PROJECT FOLDER_OF_THE_PROGRAM
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cp "$1/assets/coffee.png" "$folder"
commands=$("$(dirname "$(readlink -f "$0")")/extract_example.sh" sh "$1/README.md")
[[ -n $commands ]]
cd "$folder"
PATH=$2:$PATH bash -euxc "$commands"
[[ -s warm.jpg && -s crisp.png && -s split.png && -s look.png && -s look.cube && -s sheet.png && -s histogram.png ]]
