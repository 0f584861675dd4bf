#!/usr/bin/env bash
# Saving a photograph of 24 megapixels, a screenshot and a drawing in 256 colours: each saver beside
# the bare libpng at level 6, the bare libjpeg-turbo at quality 60, and a plain write of as many
# bytes. All of them 32-bit, under Wine, in turns in one process, and each file flushed to the disk.
# Goals: PNG at most 0.5 of the bare time and 3 % larger, JPEG at most 1.1, BMP at most 1.3.
set -euo pipefail
source scripts/lib/packages.sh
install_packages imagemagick fonts-dejavu-core

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

run_bench() { scripts/wine.sh "$TESSARY_X86_BUILD/bench/save_bench.exe" "$@" | tr -d '\r'; }

make_pictures() {
    convert -seed 24 -size 1500x1000 plasma:fractal -resize 6000x4000! -attenuate 0.4 \
        +noise Gaussian -depth 8 -type TrueColor "BMP3:$work/photograph.bmp"
    local text
    text=$(fold -s -w 100 README.md | head -n 55 | tr -d '\\%@')
    convert -size 2560x1440 xc:'#f0f0f0' -fill '#0078d7' -draw 'rectangle 0,0 2560,40' \
        -fill white -stroke '#cccccc' -draw 'rectangle 20,80 1260,1400' \
        -draw 'rectangle 1290,80 2540,700' -draw 'rectangle 1290,730 2540,1400' \
        -stroke none -fill black -font DejaVu-Sans -pointsize 18 -annotate +40+120 "$text" \
        -pointsize 14 -annotate +1310+120 "$(head -n 30 <<<"$text")" \
        \( -size 1200x600 gradient:'#ffffff-#3060a0' \) -geometry +1310+760 -composite \
        -depth 8 -type TrueColor "BMP3:$work/screenshot.bmp"
    convert -size 3000x2000 xc:'#fff8e0' -fill '#c03020' -draw 'circle 900,900 900,300' \
        -fill '#2060a0' -draw 'polygon 1500,200 2800,700 1900,1800' -fill none -stroke black \
        -strokewidth 7 -draw 'bezier 100,1900 900,100 1800,2500 2900,300' -swirl 70 \
        +dither -colors 256 -type Palette "BMP3:$work/drawing.bmp"
}

make_pictures
folder=$(scripts/wine.sh --path "$work/photograph.bmp")
folder=${folder%photograph.bmp}
for name in photograph screenshot drawing; do
    run_bench time "$name" "$folder$name.bmp" "$folder"
    for format in png jpg bmp; do run_bench peak "$name" "$folder$name.bmp" "$folder" "$format"; done
done
