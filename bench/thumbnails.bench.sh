#!/usr/bin/env bash
# Small pictures of photographs of 12 megapixels, beside vipsthumbnail over the same files with as
# many of them at a time as there are processors; and a step of a list of 5,000. Goal: at most 1.3
# times its time. The JPEG files hold no small picture themselves.
# thumbnails.bench.sh [COUNT]   so many photographs (200); 5,000 take some minutes
set -euo pipefail
source scripts/lib/packages.sh
install_packages imagemagick libvips-tools

count=${1:-${TESSARY_BENCH_PICTURES:-200}}
side=128
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TESSARY_SETTINGS_KEY='Software\Tessary_Viewer_Bench'

run_bench() { scripts/wine.sh "$TESSARY_X86_BUILD/bench/thumbnails_bench.exe" "$@" | tr -d '\r'; }
seconds() { date +%s.%N; }

for seed in 0 1 2 3; do
    convert -seed "$seed" -size 1000x750 plasma:fractal -resize 4000x3000! -attenuate 0.1 \
        +noise Gaussian -depth 8 -type TrueColor -quality 88 "$work/$seed.jpg"
done
mkdir "$work/in" "$work/out"
names=()
for ((i = 0; i < count; ++i)); do
    ln "$work/$((i % 4)).jpg" "$work/in/$i.jpg"
    names+=("$i.jpg")
done

begin=$(seconds)
(cd "$work/in" && printf '%s\0' "${names[@]}" |
    xargs -0 -n 50 -P "$(nproc)" vipsthumbnail --size "$side" -o "$work/out/%s.jpg")
peer=$(awk "BEGIN { print $(seconds) - $begin }")
echo "vipsthumbnail  $peer s"

folder=$(scripts/wine.sh --path "$work/in/0.jpg")
kept=$(scripts/wine.sh --path "$work/kept")\\
mkdir "$work/kept"
begin=$(seconds)
run_bench make "$kept" "$side" "${folder%0.jpg}"
own=$(awk "BEGIN { print $(seconds) - $begin }")
awk "BEGIN { printf \"ratio  %.2f\n\", $own / $peer }"
echo "once more, from the disk:"
run_bench make "$kept" "$side" "${folder%0.jpg}"
run_bench scroll 5000
