#!/usr/bin/env bash
# Batch conversion beside other converters on the same files: tessary-convert (32-bit, under Wine)
# and ImageMagick, GraphicsMagick and libvips (native), each with as many threads as it takes by
# itself. libvips converts one file per process, as its command line does. Photographs of 12
# megapixels from JPEG to PNG and back, and small GIF and BMP files to PNG. Goal: at most the time
# of the quickest of the others.
# TESSARY_BENCH_PICTURES tells how many photographs (20; with 200, ImageMagick takes an hour),
# TESSARY_BENCH_PEERS which of the others take part.
set -euo pipefail
source scripts/lib/packages.sh
install_packages imagemagick graphicsmagick libvips-tools

photographs=${TESSARY_BENCH_PICTURES:-20}
small_pictures=500
read -ra peers <<<"${TESSARY_BENCH_PEERS:-libvips GraphicsMagick ImageMagick}"

wine=$PWD/scripts/wine.sh
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TESSARY_SETTINGS_KEY='Software\Tessary_Viewer_Bench'

# Four of each, again and again: clouds with the grain of a camera; clouds of few colours.
make_pictures() {
    mkdir "$work/jpg" "$work/png" "$work/small"
    local seed i kind
    for seed in 0 1 2 3; do
        convert -seed "$seed" -size 1000x750 plasma:fractal -resize 4000x3000! -attenuate 0.1 \
            +noise Gaussian -depth 8 -type TrueColor -quality 88 "$work/$seed.jpg"
        convert "$work/$seed.jpg" "$work/$seed.png"
        convert -seed "$seed" -size 160x120 plasma:fractal "$work/$seed.gif"
        convert "$work/$seed.gif" -type TrueColor "BMP3:$work/$seed.bmp"
    done
    for ((i = 0; i < photographs; ++i)); do
        cp "$work/$((i % 4)).jpg" "$work/jpg/$i.jpg"
        cp "$work/$((i % 4)).png" "$work/png/$i.png"
    done
    for ((i = 0; i < small_pictures; ++i)); do
        kind=gif
        if ((i % 2)); then kind=bmp; fi
        cp "$work/$((i / 2 % 4)).$kind" "$work/small/$i.$kind"
    done
}

# Each converts all files of the current folder to the format $1 in ../out.
with_tessary() {
    "$wine" "$TESSARY_X86_BUILD/bin/tessary-convert.exe" --format "$1" --no-log --no-mask \
        --no-min-size --out ../out .
}
with_ImageMagick() { mogrify -path ../out -format "$1" ./*; }
with_GraphicsMagick() { gm mogrify -output-directory ../out -format "$1" ./*; }
with_libvips() {
    local file
    for file in *; do vips copy "$file" "../out/${file%.*}.$1"; done
}

# seconds_of CONVERTER FOLDER FORMAT
seconds_of() {
    rm -rf "$work/out"
    mkdir "$work/out"
    "$wine" cmd /c exit # what the Wine server takes to start is not the converter's work,
    sync                # nor is what others have written
    local start=$EPOCHREALTIME
    (cd "$work/$2" && "with_$1" "$3") >"$work/log" 2>&1 || {
        cat "$work/log" >&2
        return 1
    }
    awk -v start="$start" -v end="$EPOCHREALTIME" 'BEGIN { printf "%.2f\n", end - start }'
    local files
    files=$(find "$work/out" -name "*.$3" | wc -l)
    ((files == $(find "$work/$2" -type f | wc -l))) || {
        printf '%s has made only %d files\n' "$1" "$files" >&2
        return 1
    }
}

make_pictures
for job in 'jpg png' 'png jpg' 'small png'; do
    read -r folder format <<<"$job"
    printf '%d files, %s to %s\n' "$(find "$work/$folder" -type f | wc -l)" "$folder" "$format"
    for converter in tessary "${peers[@]}"; do
        seconds=$(seconds_of "$converter" "$folder" "$format")
        printf '    %-16s %9s s\n' "$converter" "$seconds"
    done
done
