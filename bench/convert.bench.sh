#!/usr/bin/env bash
# Batch conversion: what the engine adds to decoding and saving, and whether long runs cost more for
# each file than short ones.
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
