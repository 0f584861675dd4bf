#!/usr/bin/env bash
# Small pictures of photographs of 12 megapixels, beside vipsthumbnail over the same files with as
# many of them at a time as there are processors: alternately, the medians; then from the disk, and
# a page of a list of 5,000. Goal: at most 1.3 times its time. The JPEG files hold no small picture
# themselves; both sides know no file from before.
# thumbnails.bench.sh [COUNT [ROUNDS]]   so many photographs (300), so often (3)
set -euo pipefail
source scripts/lib/packages.sh
install_packages imagemagick libvips-tools

count=${1:-${TESSARY_BENCH_PICTURES:-300}}
rounds=${2:-3}
side=128
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TESSARY_SETTINGS_KEY='Software\Tessary_Viewer_Bench'

run_bench() { scripts/wine.sh "$TESSARY_X86_BUILD/bench/thumbnails_bench.exe" "$@" | tr -d '\r'; }
median() { sort -n | awk '{ all[NR] = $1 } END { print all[int((NR + 1) / 2)] }'; }

for seed in 0 1 2 3 4 5 6 7; do
    convert -seed "$seed" -size 1000x750 plasma:fractal -resize 4000x3000! -attenuate 0.1 \
        +noise Gaussian -depth 8 -type TrueColor -quality 88 "$work/$seed.jpg"
done
mkdir "$work/in" "$work/out"
names=()
for ((i = 0; i < count; ++i)); do
    ln "$work/$((i % 8)).jpg" "$work/in/$i.jpg"
    names+=("$i.jpg")
done
folder=$(scripts/wine.sh --path "$work/in/0.jpg")
folder=${folder%0.jpg}

peer() {
    local begin
    begin=$(date +%s.%N)
    (cd "$work/in" && printf '%s\0' "${names[@]}" |
        xargs -0 -n 25 -P "$(nproc)" vipsthumbnail --size "$side" -o "$work/out/%s.jpg")
    awk "BEGIN { print $(date +%s.%N) - $begin }"
}
# The seconds stand before the unit.
own() { run_bench make "$1" "$side" "$folder" | tee -a "$work/told" | sed -E 's/.* ([0-9.]+) s .*/\1/'; }

for ((round = 1; round <= rounds; ++round)); do
    mkdir "$work/kept$round"
    peer >>"$work/peer"
    own "$(scripts/wine.sh --path "$work/kept$round")\\" >>"$work/own"
    echo "round $round     vipsthumbnail $(tail -1 "$work/peer") s   own $(tail -1 "$work/own") s"
done
awk "BEGIN { printf \"small pictures of $count photographs, of vipsthumbnail's time  %.2f\n\", \
    $(median <"$work/own") / $(median <"$work/peer") }"
echo "once more, from the disk:"
run_bench make "$(scripts/wine.sh --path "$work/kept1")\\" "$side" "$folder"
run_bench scroll 5000
run_bench scroll 100000
