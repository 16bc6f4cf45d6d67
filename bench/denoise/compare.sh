#!/usr/bin/env bash
# Compares the time and the memory of denoising with those of OpenImageDenoise's own program: the same pictures, the
# same version of the library, the same number of threads. Prints a Markdown table. Linux on x86-64.
# usage: bench/denoise/compare.sh
# Environment: THREADS (2), ROUNDS (5) of each program in turn, RUNS (5) a round, WIDTH (1920), HEIGHT (1080)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

readonly threads=${THREADS:-2} rounds=${ROUNDS:-5} runs=${RUNS:-5} width=${WIDTH:-1920} height=${HEIGHT:-1080}
readonly work=$PWD/build/bench
readonly version1=$PWD/build/oidn/lib
readonly version2=$work/oidn/pyoidn/oidn
readonly memory_budget_mb=1500 # that of the filter

fail() {
    echo "compare.sh: $*" >&2
    exit 1
}

fetch_version_2() {
    local requirements=bench/denoise/oidn.txt
    cmp --silent "$requirements" "$work/oidn/requirements.txt" && return
    rm -rf "$work/oidn"
    mkdir -p "$work/oidn"
    python3 -m pip download --quiet --no-deps --require-hashes --requirement "$requirements" --dest "$work/oidn" ||
        fail "the package of OpenImageDenoise 2 could not be had"
    python3 -m zipfile -e "$work"/oidn/pyoidn-*.whl "$work/oidn"
    rm "$work"/oidn/pyoidn-*.whl
    chmod +x "$version2/bin/oidnDenoise" # wheels do not keep that
    cp "$requirements" "$work/oidn/requirements.txt" # last: it says that all is in place
}

build() {
    cmake --preset release -B "$work/release" -DZQX_BUILD_BENCH=ON -DZQX_BUILD_TESTS=OFF >/dev/null
    cmake --build "$work/release" --parallel "$threads" --target zqx_denoise_time >/dev/null
}

make_input() {
    local name
    for name in color albedo normal; do
        "$ours" --make-input "assets/render/$name.exr" "$work/$name.pfm" "$width" "$height"
    done
}

# measured PROGRAM LIBRARIES COMMAND...: adds the milliseconds of the first run to PROGRAM.first, of the others to
# PROGRAM.runs, the peak memory in KiB to PROGRAM.memory, and the processor seconds of the process to PROGRAM.cpu.
measured() {
    local program=$work/$1 libraries=$2
    shift 2
    LD_LIBRARY_PATH=$libraries OIDN_NUM_THREADS=$threads \
        /usr/bin/time --format "%M %U %S" --output "$program.usage" "$@" >"$program.log" ||
        fail "$1 failed: $(cat "$program.log")"
    # Ours says "run MILLISECONDS", theirs "msec=MILLISECONDS, hash=...".
    awk '/^run / { print $2 } /hash=/ { sub(/.*msec=/, ""); print $0 + 0 }' "$program.log" >"$program.times"
    (($(wc -l <"$program.times") == runs + 1)) || fail "$1 does not say how long its runs took: $(cat "$program.log")"
    head -n 1 "$program.times" >>"$program.first"
    tail -n +2 "$program.times" >>"$program.runs"
    awk '{ print $1 }' "$program.usage" >>"$program.memory"
    awk '{ print $2 + $3 }' "$program.usage" >>"$program.cpu"
}

measure_ours() {
    measured "$1" "$2" "$ours" "$work/color.pfm" "$work/albedo.pfm" "$work/normal.pfm" "$work/$1.pfm" "$runs"
}

measure_theirs() {
    measured theirs "$version2/lib" "$version2/bin/oidnDenoise" --device cpu --threads "$threads" \
        --maxmem "$memory_budget_mb" --hdr "$work/color.pfm" --alb "$work/albedo.pfm" --nrm "$work/normal.pfm" \
        --output "$work/theirs.pfm" -n "$((runs + 1))"
}

# A library that the loader found elsewhere would be measured under a wrong name.
expect_version() {
    LD_LIBRARY_PATH=$1 OIDN_VERBOSE=2 OIDN_NUM_THREADS=$threads "$ours" \
        "$work/color.pfm" "$work/albedo.pfm" "$work/normal.pfm" "$work/ours.pfm" 1 >"$work/verbose.log"
    grep --quiet --fixed-strings "$2" "$work/verbose.log" || fail "the library is not OpenImageDenoise $2"
}

median() {
    sort -g "$work/$1" | awk '{ value[NR] = $1 }
        END { print (value[int((NR + 1) / 2)] + value[int(NR / 2) + 1]) / 2 }'
}

least() {
    sort -g "$work/$1" | head -n 1
}

# row PROGRAM TITLE. The ratio is that of the least times: the work is always the same, and what else the machine does
# only adds to it.
row() {
    awk -v reference="$(least theirs.runs)" -v median="$(median "$1.runs")" -v least="$(least "$1.runs")" \
        -v first="$(median "$1.first")" -v memory="$(sort -gr "$work/$1.memory" | head -n 1)" -v title="$2" \
        -v cpu="$(least "$1.cpu")" \
        'BEGIN { printf "| %.3f | %s | %.3f | %.3f | %.3f | %.2f | %.0f |\n",
                 least / reference, title, least / 1000, median / 1000, first / 1000, cpu, memory / 1024 }'
}

# pixels PROGRAM: what it wrote, without the header, which is laid out in one way by us and in another by them.
pixels() {
    tail -c "$((width * height * 12))" "$work/$1.pfm"
}

[[ -x /usr/bin/time ]] || fail "GNU time is missing: sudo apt-get install time"
[[ -e $version1/libOpenImageDenoise.so.1 ]] || fail "OpenImageDenoise 1 is missing: ./dev demo fetches it"
mkdir -p "$work"
fetch_version_2
build
readonly ours=$work/release/bench/denoise/zqx_denoise_time
make_input
expect_version "$version2/lib" 2.5.1
expect_version "$version1" 1.4.3
rm -f "$work"/{ours,theirs,older}.{runs,first,memory,cpu}
for ((round = 0; round < rounds; ++round)); do
    measure_ours ours "$version2/lib"
    measure_theirs
    measure_ours older "$version1"
done

processor=$(grep -m 1 "model name" /proc/cpuinfo | cut -d : -f 2-)
echo "$width x $height, $threads threads, $rounds x $runs runs:$processor"
echo
echo "| Ratio | Program | Least s | Median s | First run s | Processor s | Peak MiB |"
echo "|---|---|---|---|---|---|---|"
row ours "DenoisingFilter, OpenImageDenoise 2.5.1"
row theirs "oidnDenoise, OpenImageDenoise 2.5.1"
row older "DenoisingFilter, OpenImageDenoise 1.4.3"
echo
for program in ours theirs older; do
    awk -v median="$(median $program.runs)" -v least="$(least $program.runs)" 'BEGIN { exit median <= 1.1 * least }' &&
        echo "The machine was busy with other work: the times say little, run again when it is idle." && break
done
echo "Processor s: of the whole process, reading and writing the pictures included."
echo "The first run of DenoisingFilter loads and sets up the library; that of oidnDenoise comes after both."
if cmp --silent <(pixels theirs) <(pixels ours); then
    echo "With the same library both programs write the same pixels."
else
    echo "With the same library the two programs write different pixels."
fi
