#!/usr/bin/env bash
# Measures the library built with other sizes of runs and of the rings of bands, interleaved, and prints a Markdown table
# of times in ms (best of ROUNDS). The sizes in force are the defaults in Run.h and BandBlur.cpp.
#   RUNS="128 256 512 1024 2048" RINGS="160 320 640 1280" ROUNDS=3 bench/sizes/compare.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

read -ra runs <<<"${RUNS:-128 256 512 1024 2048}"
read -ra rings <<<"${RINGS:-160 320 640 1280}" # KiB
rounds=${ROUNDS:-3}
work=build/bench/sizes
works=("convert RGB32F to SRGB8" "grade SRGBA8 to SRGBA8" "grade RGB32F to RGB32F" "blur RGB32F, sigma 1"
    "blur RGB32F, sigma 3" "blur RGB32F, sigma 6")

# build NAME DEFINITION
build() {
    cmake --preset release -B "$work/$1" -DZQX_BUILD_TESTS=OFF -DZQX_BUILD_BENCH=ON -DCMAKE_CXX_FLAGS="-D$2" >/dev/null
    cmake --build "$work/$1" --parallel 2 --target zqx_bench_peers >/dev/null
}

names=()
for run in "${runs[@]}"; do
    build "run-$run" "ZQX_IMG_RUN_LENGTH=$run"
    names+=("run-$run")
done
for ring in "${rings[@]}"; do
    build "ring-$ring" "ZQX_IMG_RING_KIB=$ring"
    names+=("ring-$ring")
done

# time_of NAME WORK: our milliseconds, the seventh cell of the row
time_of() {
    GLIBC_TUNABLES=glibc.malloc.hugetlb=1 "$work/$1/bench/peers/zqx_bench_peers" --filter "$2" --repetitions 5 \
        2>/dev/null | awk -F'|' '$1 == "" && NR > 3 && $8 + 0 > 0 { print $8 + 0 }' | head -1
}

declare -A best
for ((round = 0; round < rounds; ++round)); do
    for task in "${works[@]}"; do
        for name in "${names[@]}"; do
            time=$(time_of "$name" "$task")
            if [[ -z ${best["$name $task"]:-} ]] || awk "BEGIN { exit !($time < ${best["$name $task"]}) }"; then
                best["$name $task"]=$time
            fi
        done
    done
done

printf '| work |'
printf ' %s |' "${names[@]}"
printf '\n|---|'
printf -- '---|%.0s' "${names[@]}"
echo
for task in "${works[@]}"; do
    printf '| %s |' "$task"
    for name in "${names[@]}"; do
        printf ' %s |' "${best["$name $task"]}"
    done
    echo
done
