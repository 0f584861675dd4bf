#!/usr/bin/env bash
# Going through many pictures: filling the control bar's list, and fast-forward over 500 small
# pictures beside decoding and displaying them.
set -euo pipefail
source scripts/lib/packages.sh
install_packages imagemagick

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

run_bench() { scripts/wine.sh "$TESSARY_X86_BUILD/bench/browse_bench.exe" "$@" | tr -d '\r'; }

run_bench fill

convert -seed 5 -size 320x240 plasma:fractal -quality 85 "$work/picture.jpg"
for ((i = 100; i < 600; ++i)); do cp "$work/picture.jpg" "$work/$i.jpg"; done
folder=$(scripts/wine.sh --path "$work/100.jpg")
pictures=()
for ((i = 100; i < 600; ++i)); do pictures+=("${folder%100.jpg}$i.jpg"); done
run_bench forward "${pictures[@]}"
