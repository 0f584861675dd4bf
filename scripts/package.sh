#!/usr/bin/env bash
# package.sh   Builds the viewer and packs it, with plug-ins, licences and the manual, into
#              build/TessaryViewer-VERSION.zip: unpack it anywhere on a Windows machine and start
#              TessaryViewer.exe. The same source makes the same bytes; the files are dated by the
#              last commit, or by SOURCE_DATE_EPOCH (seconds since 1970).
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib/paths.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/packages.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/manual.sh"

source_date() {
    local seconds=${SOURCE_DATE_EPOCH:-}
    [[ -n $seconds ]] || seconds=$(git -C "$root" log -1 --format=%ct 2>/dev/null) ||
        die "this is no git checkout: set SOURCE_DATE_EPOCH to the date of the source"
    printf '%s' "$seconds"
}

# built_programs: what the build makes in the application folder, which may hold more by now.
built_programs() {
    ninja -C "$x86_build" -t targets all | sed -n 's|^bin/\([^/:]*\): .*|\1|p'
}

# windows_text: standard input as every Notepad reads it.
windows_text() {
    printf '\xef\xbb\xbf'
    sed 's/\r*$/\r/'
}

install_packages "${manual_packages[@]}"
date=$(source_date)
build x86 TessaryViewer tessary-convert
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$x86_build/CMakeCache.txt")

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Without the version: a new one is unpacked over the old one, and the settings still fit.
folder=$work/TessaryViewer
mkdir -p "$folder/licences"
while read -r program; do
    ! grep -qaF "$root" "$app_dir/$program" || die "$program names the folder it was built in"
    cp "$app_dir/$program" "$folder/"
done < <(built_programs)
[[ -f $folder/TessaryViewer.exe ]] || die "the build made no TessaryViewer.exe"
"${system_python[@]}" "$root/scripts/lib/check_programs.py" "$folder"/*

windows_text <"$root/LICENSE" >"$folder/licences/TessaryViewer.txt"
for licence in "$root"/build/deps/x86/licences/*.txt; do
    windows_text <"$licence" >"$folder/licences/${licence##*/}"
done
sed "s/@VERSION@/$version/" "$root/docs/read_first.ja.txt" |
    windows_text >"$folder/ReadMe.ja.txt"
render_manual "$folder/manual"

package=$root/build/TessaryViewer-$version.zip
"${system_python[@]}" "$root/scripts/lib/make_zip.py" "$folder" "$date" "$package"
say "package: $package ($(stat --format=%s "$package") bytes, SHA-256 $(sha256sum <"$package" | cut -d' ' -f1))"
