#!/usr/bin/env bash
# Compares zqx-img with other programs that adjust photographs: the same large JPEG in, a JPEG of the same quality out,
# the same number of threads, all stages in use. Prints a Markdown table. Timing is no test: a figure that misses what is
# asked of it is marked, and the script still succeeds.
# usage: bench/programs/compare.sh PATH-TO-zqx-img
# Environment: THREADS (2), ROUNDS (5) of every program in turn, WIDTH (5184), HEIGHT (3456), JSON (file to write, too)
set -euo pipefail
export LC_ALL=C
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

fail() {
    echo "compare.sh: $*" >&2
    exit 1
}

(($# == 1)) && [[ -x $1 ]] || fail "say where zqx-img is"
zqx_img=$(realpath "$1")
readonly zqx_img threads=${THREADS:-2} rounds=${ROUNDS:-5} width=${WIDTH:-5184} height=${HEIGHT:-3456}
work=$(mktemp -d)
readonly work
trap 'rm -rf "$work"' EXIT

# Two builds of ImageMagick may be installed beside each other; the usual one works on 16-bit integers, which is faster.
convert=convert
command -v convert-im6.q16 >/dev/null && convert=convert-im6.q16
readonly convert

make_photograph() {
    ffmpeg -loglevel error -y -i assets/coffee.png \
        -vf "scale=$width:$height:flags=lanczos,noise=alls=6:allf=t" -q:v 3 -frames:v 1 "$work/in.jpg"
}

make_settings() {
    cat >"$work/look.json" <<'JSON'
{
    "imageProcessing": {
        "version": 1,
        "colorGrading": {
            "exposure": 0.3,
            "contrast": 0.6,
            "highlight": -0.2,
            "shadow": 0.2,
            "temperature": 5500.0,
            "saturation": 1.2
        },
        "sharpness": 0.3
    }
}
JSON
    # White balance and saturation in one matrix, for the program whose options have no saturation.
    printf '3 3\n1.10 -0.14 -0.01\n-0.04 1.06 -0.01\n-0.05 -0.16 1.32\n' >"$work/colour.mat"
}

readonly ours=zqx-img coding="zqx-img, decoding and encoding alone"
readonly programs=("$ours" "$coding" ImageMagick GraphicsMagick vips oiiotool)
declare -A command milliseconds mebibytes

# What each does, as near as sensible options come. All but ours work on encoded values, where nothing needs decoding.
declare_commands() {
    local quality=90 in=$work/in.jpg
    # Exposure, contrast, highlights, shadows, white balance, saturation, gradient map, sharpening.
    command[$ours]="'$zqx_img' apply '$in' -o '$work/ours.jpg' --quality $quality --params '$work/look.json' \
        --set gradient.intensity=0.3 --set gradient.black=0.05,0,0.1 --set gradient.white=1,0.9,0.7"
    command[$coding]="'$zqx_img' apply '$in' -o '$work/coding.jpg' --quality $quality"
    # Exposure, contrast (a sigmoid), white balance, saturation, sharpening. No highlights, shadows or gradient map.
    command[ImageMagick]="$convert '$in' -evaluate Multiply 1.23 -sigmoidal-contrast 2x50% \
        -color-matrix '0.94 0 0  0 1 0  0 0 1.16' -modulate 100,120 -unsharp 0x1+1.5+0.02 \
        -sampling-factor 2x2 -define jpeg:optimize-coding=false -quality $quality '$work/im.jpg'"
    # The same with a contrast that is linear.
    command[GraphicsMagick]="gm convert '$in' -operator All Multiply 1.23 -level 4%,1.0,96% \
        -recolor '0.94 0 0 0 1 0 0 0 1.16' -modulate 100,120 -unsharp 0x1+1.5+0.02 \
        -sampling-factor 2x2 -define jpeg:optimize-coding=false -quality $quality '$work/gm.jpg'"
    # Exposure with a linear contrast in one step, white balance with saturation in one matrix, sharpening; a run for
    # each, with pictures between them that the program maps into memory.
    command[vips]="vips linear --uchar -- '$in' '$work/1.v' '1.32 1.32 1.32' '-10 -10 -10' &&
        vips recomb '$work/1.v' '$work/2.v' '$work/colour.mat' &&
        vips sharpen '$work/2.v' '$work/vips.jpg[Q=$quality,subsample-mode=on]' --sigma 1"
    # Exposure, contrast (linear), white balance, saturation, sharpening.
    command[oiiotool]="oiiotool --threads $threads '$in' --mulc 1.23 --contrast:black=0.04:white=0.96 \
        --ccmatrix '0.94,0,0,0,1,0,0,0,1.16' --saturate 1.2 --unsharp:width=3:contrast=1.5:threshold=0.02 \
        --compression jpeg:$quality -o '$work/oiio.jpg'"
}

# measure PROGRAM: runs it once and keeps the shorter of its times, and its peak memory.
measure() {
    local start=${EPOCHREALTIME/./} elapsed memory
    /usr/bin/time --quiet --format %M --output "$work/memory" bash -c "${command[$1]}" >"$work/log" 2>&1 ||
        fail "$1 failed: $(cat "$work/log")"
    elapsed=$(((${EPOCHREALTIME/./} - start) / 1000))
    memory=$(($(<"$work/memory") / 1024))
    ((elapsed < ${milliseconds[$1]:-1000000000})) && milliseconds[$1]=$elapsed
    ((memory > ${mebibytes[$1]:-0})) && mebibytes[$1]=$memory
    return 0
}

measure_all() {
    local round program
    for ((round = 0; round < rounds; ++round)); do
        for program in "${programs[@]}"; do
            measure "$program"
        done
    done
}

fastest_peer() {
    local program
    for program in "${programs[@]:2}"; do
        echo "${milliseconds[$program]} $program"
    done | sort -n | head -n 1 | cut -d ' ' -f 2
}

# ratio A B
ratio() {
    awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'
}

# mark RATIO below|above LIMIT: what is missed is said.
mark() {
    awk -v ratio="$1" -v side="$2" -v limit="$3" \
        'BEGIN { if (side == "below" ? ratio < limit : ratio > limit) printf " **MISSED**" }'
}

print_table() {
    local program to_ours required peer
    peer=$(fastest_peer)
    echo "A JPEG of $width x $height pixels, $threads threads for everybody, best of $rounds."
    echo
    echo "| program | its time, ours = 1 | asked | ms | peak memory, MiB |"
    echo "|---|---|---|---|---|"
    for program in "${programs[@]}"; do
        to_ours=$(ratio "${milliseconds[$program]}" "${milliseconds[$ours]}")
        required=-
        [[ $program == "$peer" ]] && required="at least 2$(mark "$to_ours" below 2)"
        if [[ $program == "$coding" ]]; then
            # Ours is to take at most 1.3 times as long.
            required="at least 0.77$(mark "$(ratio "${milliseconds[$ours]}" "${milliseconds[$coding]}")" above 1.3)"
        fi
        echo "| $program | $to_ours | $required | ${milliseconds[$program]} | ${mebibytes[$program]} |"
    done
}

write_json() {
    local program separator=
    {
        echo "{ \"width\": $width, \"height\": $height, \"threads\": $threads, \"rounds\": $rounds, \"programs\": ["
        for program in "${programs[@]}"; do
            printf '%s  { "program": "%s", "ms": %d, "peakMiB": %d }' \
                "$separator" "$program" "${milliseconds[$program]}" "${mebibytes[$program]}"
            separator=$',\n'
        done
        printf '\n] }\n'
    } >"$1"
}

export OMP_NUM_THREADS=$threads MAGICK_THREAD_LIMIT=$threads VIPS_CONCURRENCY=$threads
make_photograph
make_settings
declare_commands
measure_all
print_table
[[ -z ${JSON:-} ]] || write_json "$JSON"
