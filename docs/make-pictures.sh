#!/usr/bin/env bash
# Makes the pictures of the guide with the program itself: make-pictures.sh PROGRAM
#
# They are made of docs/images/coffee.jpg, which is the sample photograph reduced to 300 pixels: small enough for three
# side by side on a page, and the middle one of each row as it is.
set -euo pipefail
program=$(readlink -f "$1")
cd "$(dirname "$(readlink -f "$0")")/images"

# picture NAME SETTING...
picture() {
    local name=$1 settings=()
    shift
    local setting
    for setting in "$@"; do
        settings+=(--set "$setting")
    done
    "$program" apply coffee.jpg -o "$name.jpg" --quality 85 "${settings[@]}"
}

picture exposure-low exposure=-1
picture exposure-high exposure=1
picture contrast-low contrast=0.35
picture contrast-high contrast=0.62
picture highlight-low highlight=-1
picture highlight-high highlight=3
picture shadow-low shadow=-0.15
picture shadow-high shadow=0.15
picture temperature-low temperature=4500
picture temperature-high temperature=9000
picture hue-low hue=-40
picture hue-high hue=40
picture saturation-low saturation=0
picture saturation-high saturation=1.7
picture gradient-half gradient.intensity=0.5 gradient.black=0.01,0.02,0.09 gradient.white=1,0.75,0.4
picture gradient-full gradient.intensity=1 gradient.black=0.01,0.02,0.09 gradient.white=1,0.75,0.4
picture sharpness-low sharpness=-0.3
picture sharpness-high sharpness=0.2
picture invert invert=true
picture flip flipX=true
