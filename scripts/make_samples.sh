#!/usr/bin/env bash
# make_samples.sh   Draws the pictures of samples/ anew: one of each common format, one of them with
#                   a Japanese name.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib/paths.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/packages.sh"

install_packages "${sample_packages[@]}"
mkdir -p "$root/samples"
cd "$root/samples"

# ridge WIDTH BASE HEIGHT PHASE: the outline of a chain of hills, as the points of a polygon.
ridge() {
    awk -v width="$1" -v base="$2" -v height="$3" -v phase="$4" 'BEGIN {
        printf "0,%d ", base + 1000
        for (x = 0; x <= width; x += 4) {
            t = x / width * 6.2832
            y = sin(t * 1.3 + phase) + 0.5 * sin(t * 2.9 + phase * 2.1) + 0.22 * sin(t * 7.1 + phase * 3.7) \
                + 0.08 * sin(t * 17.3 + phase)
            printf "%d,%.1f ", x, base - height * y
        }
        printf "%d,%d", width, base + 1000
    }'
}

# Dusk over five chains of hills, each paler than the one before it.
draw_dusk() {
    local width=1280 layers=() i
    local colours=('#8d5a7b' '#6d4570' '#4d335f' '#33264a' '#1b1731')
    for i in 0 1 2 3 4; do
        layers+=(-fill "${colours[i]}" -draw "polygon $(ridge $width $((500 + i * 62)) \
            $((58 - i * 5)) "$i.7")")
    done
    convert \
        '(' -size ${width}x400 gradient:'#24305e-#b2577f' ')' \
        '(' -size ${width}x400 gradient:'#b2577f-#ffd27a' ')' -append \
        '(' -size 760x760 radial-gradient:'#ffe3a0b0-#ffe3a000' ')' -geometry +490+50 -composite \
        -fill '#fff3c4' -draw 'circle 870,430 870,364' \
        "${layers[@]}" -sampling-factor 4:2:0 -quality 85 '夕暮れの山.jpg'
}

# Glass balls on a transparent ground: every step of the alpha channel.
draw_bubbles() {
    local balls=() x y size hue
    while read -r x y size hue; do
        balls+=('(' -size "${size}x${size}" "radial-gradient:hsl($hue,70%,88%)-hsl($hue,80%,48%)"
            '(' +clone -fill black -colorize 100 -fill white
            -draw "circle $((size / 2)),$((size / 2)) $((size / 2)),2" -evaluate multiply 0.82 ')'
            -alpha off -compose CopyOpacity -composite
            -fill '#ffffffc0' -draw "ellipse $((size * 36 / 100)),$((size * 26 / 100)) \
$((size * 14 / 100)),$((size * 8 / 100)) 0,360"
            -repage "+$x+$y" ')')
    done <<<'20 60 180 200
150 20 120 330
240 130 210 40
60 230 150 120
400 40 150 270
440 220 170 10
300 330 90 180
190 320 60 60'
    convert -size 640x440 xc:none "${balls[@]}" -background none -compose over -flatten -depth 8 bubbles.png
}

# A pinwheel that turns: palette colours and several frames.
draw_pinwheel() {
    local frames=() turn blade blades
    for turn in 0 10 20; do
        blades=()
        for blade in 0 1 2 3 4 5 6 7 8 9 10 11; do
            blades+=(-fill "hsl($((blade % 4 * 90 + 15)),75%,58%)" -draw "translate 160,160
                rotate $((blade * 30 + turn * 3))
                path 'M 0,0 Q 40,-90 0,-150 A 150,150 0 0 1 75,-130 Q 60,-50 0,0 Z'")
        done
        frames+=('(' -size 320x320 xc:'#fbf7ec' "${blades[@]}"
            -fill '#3a3a4a' -draw 'circle 160,160 160,148' ')')
    done
    convert -delay 12 -loop 0 "${frames[@]}" +dither -colors 64 -layers Optimize pinwheel.gif
}

# A woven pattern in sixteen colours, for the oldest of formats.
draw_weave() {
    convert -size 320x240 xc: -fx '0.5+0.4*sin(i/13)*cos(j/17)+0.1*sin((i+j)/5)' \
        -colorspace Gray -normalize \
        '(' -size 1x64 gradient:'#123b5d-#58b6a9' gradient:'#58b6a9-#fdf0c8' \
        gradient:'#fdf0c8-#e0734f' -append ')' -clut \
        -dither FloydSteinberg -colors 16 -compress none BMP3:weave.bmp
}

draw_dusk
draw_bubbles
draw_pinwheel
draw_weave
du --apparent-size --bytes ./*.*
