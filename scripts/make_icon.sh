#!/usr/bin/env bash
# make_icon.sh   Renders res/icon.svg into res/app.ico, in every size that Windows asks for at 100
#                to 250 %. The result is kept in the repository: building needs none of these tools.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib/paths.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/packages.sh"

sizes=(16 20 24 32 40 48 64 256)

install_packages librsvg2-bin imagemagick

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

images=()
for size in "${sizes[@]}"; do
    image=$work/$size.png
    rsvg-convert --width "$size" --height "$size" "$root/res/icon.svg" --output "$image"
    images+=("PNG32:$image")
done
convert "${images[@]}" "$work/app.ico"
mv "$work/app.ico" "$root/res/app.ico"
say "wrote res/app.ico in the sizes ${sizes[*]}"
