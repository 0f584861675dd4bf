#!/usr/bin/env bash
# check_pictures.sh FOLDER   Converts pictures of other programs and compares what comes out with what they should look
#                            like. FOLDER holds a suite of PNG files with bitmaps of the same names (pngsuite/png and
#                            pngsuite/bmp) and one JPEG picture in all eight orientations (photos/rotation-1.jpg …).
#                            Such pictures are not ours to hand on, so no test needs them.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib/paths.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/manual.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/wine.sh"

(($# == 1)) || die "usage: check_pictures.sh FOLDER"
[[ -d $1/pngsuite && -f $1/photos/rotation-1.jpg ]] || die "there are no such pictures in $1"

build x86 tessary-convert iftessjpeg iftesspng
ensure_wine_environment
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# convert_into NAME FILE…: bitmaps in the folder NAME. Some files are damaged on purpose, which the status would tell.
convert_into() {
    local name=$1 file files=()
    shift
    for file; do files+=("$(windows_path "$file")"); done
    (run_wine "$app_dir/tessary-convert.exe" --ignore-settings --quiet --format bmp \
        --out "$(windows_path "$work/$name")" -- "${files[@]}") >"$work/$name.log" 2>&1 || true
}
convert_into png "$1"/pngsuite/png/*.png
convert_into bmp "$1"/pngsuite/bmp/*.bmp
convert_into photos "$1"/photos/rotation-?.jpg

"${system_python[@]}" "$root/scripts/lib/check_pictures.py" "$1" "$work"
