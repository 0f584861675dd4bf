#!/usr/bin/env bash
# What a user waits for: showing a 24-megapixel JPEG beside the bare decoder, playing an animation,
# scanning a folder of 50 plug-ins, and what 1000 pictures leave behind. All under Wine, in the same
# process environment.
set -euo pipefail
source scripts/lib/packages.sh
install_packages imagemagick

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

windows_name() { scripts/wine.sh --path "$1"; }

run_bench() { scripts/wine.sh "$TESSARY_X86_BUILD/bench/viewer_bench.exe" "$@" | tr -d '\r'; }

convert -seed 24 -size 1500x1000 plasma:fractal -resize 6000x4000! -attenuate 0.4 +noise Gaussian \
    -quality 90 "$work/photograph.jpg"
run_bench show "$(windows_name "$work/photograph.jpg")"
run_bench sight "$(windows_name "$work/photograph.jpg")"

for how in "" parts; do
    run_bench film "$(windows_name "$work/film.png")" ${how:+"$how"}
    echo "an animation of 30 frames a second${how:+, in parts}:"
    run_bench frames "$(windows_name "$work/film.png")"
done

mkdir "$work/plugins"
for ((i = 0; i < 25; ++i)); do
    cp "$TESSARY_X86_BUILD/bin/iftessjpeg.spi" "$work/plugins/jpeg$i.spi"
    cp "$TESSARY_X86_BUILD/bin/iftesspng.spi" "$work/plugins/png$i.spi"
done
run_bench scan "$(windows_name "$work/plugins")"

pictures=()
for sample in samples/*.*; do pictures+=("$(windows_name "$sample")"); done
run_bench leave "${pictures[@]}"
