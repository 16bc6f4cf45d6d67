#!/usr/bin/env bash
# Runs the checked shell examples of a document, one after the other in a folder with nothing but sample pictures:
# run_shell_example.sh PROJECT FOLDER_OF_THE_PROGRAM DOCUMENT FILE_THAT_IT_MAKES...
set -euo pipefail
project=$1 programs=$2 document=$3
shift 3
commands=$("$(dirname "$(readlink -f "$0")")/extract_example.sh" sh "$project/$document")
[[ -n $commands ]] || {
    echo "There are no checked shell examples in $document." >&2
    exit 1
}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cp "$project/assets/coffee.png" "$folder"
cp "$project/assets/render/color.exr" "$folder/render.exr"
# A folder of pictures, one of them in a folder of its own.
mkdir -p "$folder/pictures/evening"
cp "$project/assets/coffee.png" "$folder/pictures/morning.png"
cp "$project/docs/images/coffee.jpg" "$folder/pictures/noon.jpg"
cp "$project/docs/images/coffee.jpg" "$folder/pictures/evening/late.jpg"
cd "$folder"
PATH=$programs:$PATH bash -euxo pipefail -c "$commands"
for file in "$@"; do
    [[ -s $file ]] || {
        echo "The examples of $document did not make $file." >&2
        exit 1
    }
done
