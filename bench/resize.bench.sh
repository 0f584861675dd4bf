#!/usr/bin/env bash
# Resizing a 24-megapixel photograph to what a window shows: this program's kernel (32-bit, under
# Wine) and ImageMagick's -resize (native) on the same picture in the same run. For each size and
# each of the two: the time of the resize step alone, and how near the result comes to the exact
# Lanczos-3 resize (58.9 dB is what rounding to bytes leaves at best); the kernel's in
# linear light, too.
set -euo pipefail
source scripts/lib/packages.sh
install_packages imagemagick

sizes=(866x577 1280x853)
passes=5 # of ImageMagick

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
bench=$TESSARY_X86_BUILD/bench/resize_bench.exe

windows_name() { scripts/wine.sh --path "$work/$1"; }

# run_bench ARGS…: what the benchmark prints, with this machine's line ends.
run_bench() { scripts/wine.sh "$bench" "$@" | tr -d '\r'; }

# Clouds with edges, fine lines and grain: as much detail at each scale as a photograph has.
make_picture() {
    convert -seed 24 -size 1500x1000 plasma:fractal -resize 6000x4000! \
        -stroke black -fill none -strokewidth 3 -draw 'circle 3000,2000 3000,900' \
        -fill white -draw 'polygon 700,600 2300,900 1200,3100' \
        \( -size 1000x4000 pattern:gray50 \) -gravity east -composite \
        -attenuate 0.4 +noise Gaussian -depth 8 -type TrueColor "BMP3:$work/picture.bmp"
}

# resizing_seconds SIZE COUNT: how long ImageMagick takes to load the picture and resize it COUNT
# times.
resizing_seconds() {
    local steps=() start i
    for ((i = 0; i < $2; ++i)); do
        steps+=('(' -clone 0 -resize "$1!" ')' -delete 1)
    done
    start=$EPOCHREALTIME
    convert "$work/picture.bmp" "${steps[@]}" null:
    awk -v start="$start" -v end="$EPOCHREALTIME" 'BEGIN { print end - start }'
}

# imagemagick_milliseconds SIZE: of one resize; what loading costs cancels out.
imagemagick_milliseconds() {
    local one many
    one=$(resizing_seconds "$1" 1)
    many=$(resizing_seconds "$1" $((passes + 1)))
    awk -v one="$one" -v many="$many" -v passes="$passes" \
        'BEGIN { printf "%.1f\n", (many - one) * 1000 / passes }'
}

make_picture
for size in "${sizes[@]}"; do
    ours=$(run_bench time "$(windows_name picture.bmp)" "$size" "$(windows_name ours.bmp)")
    theirs=$(imagemagick_milliseconds "$size")
    convert "$work/picture.bmp" -resize "$size!" -type TrueColor "BMP3:$work/theirs.bmp"
    { read -r our_quality; read -r their_quality; } < <(run_bench psnr \
        "$(windows_name picture.bmp)" "$(windows_name ours.bmp)" "$(windows_name theirs.bmp)")
    light=$(run_bench light "$(windows_name picture.bmp)" "$size" "$(windows_name light.bmp)")
    light_quality=$(run_bench lightpsnr "$(windows_name picture.bmp)" "$(windows_name light.bmp)")
    printf '%-28s %10s %10s\n' "6000x4000 to $size" ms dB \
        'picture kernel, under Wine' "$ours" "$our_quality" \
        '  in linear light' "$light" "$light_quality" \
        'ImageMagick -resize, native' "$theirs" "$their_quality"
done
