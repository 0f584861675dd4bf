#!/usr/bin/env bash
# Batch conversion: what the engine takes for a file beside decoding and encoding (goal: less than 5
# ms), and whether long runs cost more for each file than short ones (goal: no). Saving into one
# folder does under Wine, which reads the whole folder to find out that a name is not there.
set -euo pipefail
source scripts/lib/packages.sh
install_packages imagemagick

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

run_bench() {
    local command=$1 folder=$work/$1
    shift
    mkdir "$folder"
    scripts/wine.sh "$TESSARY_X86_BUILD/bench/convert_bench.exe" "$command" \
        "$(scripts/wine.sh --path "$folder")" "$@" | tr -d '\r'
}

convert -seed 6 -size 160x120 plasma:fractal -quality 85 "$work/sample.jpg"
run_bench cost "$(scripts/wine.sh --path "$work/sample.jpg")"
run_bench many
