#!/usr/bin/env bash
# package.sh           Builds the viewer and packs it, with plug-ins, licences and the manual, into
#                      build/TessaryViewer-VERSION.zip: unpack it anywhere on a Windows machine and
#                      start TessaryViewer.exe. The same source makes the same bytes; the files are
#                      dated by the last commit, or by SOURCE_DATE_EPOCH (seconds since 1970).
# package.sh --tests   Packs the tests too, into build/TessaryViewer-VERSION-tests.zip: unpacked on a
#                      Windows machine, run-tests.cmd runs them all and writes test-log.txt.
#                      CHECKLIST.txt is for the eyes.
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

# built_files FOLDER PATTERN: what the build makes in a folder of its own, which may hold more by now:
# the paths from there on that match a regular expression.
built_files() {
    ninja -C "$x86_build" -t targets all | sed -nE "s#^$1/($2): .*#\1#p"
}

# windows_lines: standard input with the line ends of Windows.
windows_lines() { sed 's/\r*$/\r/'; }

# windows_text: standard input as every Notepad reads it.
windows_text() {
    printf '\xef\xbb\xbf'
    windows_lines
}

# stage_programs FOLDER: the application folder.
stage_programs() {
    local program
    while read -r program; do
        ! grep -qaF "$root" "$app_dir/$program" || die "$program names the folder it was built in"
        install -D --mode=644 "$app_dir/$program" "$1/$program"
    done < <(built_files bin '[^/:]*')
    [[ -f $1/TessaryViewer.exe ]] || die "the build made no TessaryViewer.exe"
    "${system_python[@]}" "$root/scripts/lib/check_programs.py" "$1"/*
}

# The folder has no version in its name: a new one is unpacked over the old one, and the settings
# still fit.
stage_viewer() {
    local licence
    stage_programs "$1"
    mkdir "$1/licences"
    windows_text <"$root/LICENSE" >"$1/licences/TessaryViewer.txt"
    for licence in "$root"/build/deps/x86/licences/*.txt; do
        windows_text <"$licence" >"$1/licences/${licence##*/}"
    done
    sed "s/@VERSION@/$version/" "$root/docs/read_first.ja.txt" | windows_text >"$1/ReadMe.ja.txt"
    render_manual "$1/manual"
}

# The test programs look for the application folder, their plug-ins and seeds where the build has them.
stage_tests() {
    local file
    stage_programs "$1/bin"
    while read -r file; do
        install -D --mode=644 "$x86_build/tests/$file" "$1/tests/$file"
        if [[ -f $x86_build/tests/$file.script ]]; then
            install --mode=644 "$x86_build/tests/$file.script" "$1/tests/$file.script"
        fi
    done < <(built_files tests '[^:]*\.(exe|dll|spi)')
    cp -r "$root/tests/fuzz/seeds" "$1/tests/seeds"
    mkdir "$1/samples"
    for file in "$root"/samples/*; do
        case ${file##*/} in
        *[![:ascii:]]*) cp "$file" "$1/samples/sample.${file##*.}" ;; # no name for every Windows
        *) cp "$file" "$1/samples/" ;;
        esac
    done
    windows_lines <"$root/tests/run-tests.cmd" >"$1/run-tests.cmd"
    windows_text <"$root/docs/windows_checklist.md" >"$1/CHECKLIST.txt"
}

# pack FOLDER NAME: build/NAME.zip.
pack() {
    local package=$root/build/$2.zip
    "${system_python[@]}" "$root/scripts/lib/make_zip.py" "$1" "$date" "$package"
    say "package: $package ($(stat --format=%s "$package") bytes, SHA-256 $(sha256sum <"$package" | cut -d' ' -f1))"
}

targets=(TessaryViewer tessary-convert)
case ${1:-} in
'') ;;
--tests) targets=(all) ;;
*) die "usage: package.sh [--tests]" ;;
esac
install_packages "${manual_packages[@]}"
date=$(source_date)
build x86 "${targets[@]}"
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$x86_build/CMakeCache.txt")

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

stage_viewer "$work/TessaryViewer"
pack "$work/TessaryViewer" "TessaryViewer-$version"
if [[ ${1:-} == --tests ]]; then
    stage_tests "$work/TessaryTests"
    pack "$work/TessaryTests" "TessaryViewer-$version-tests"
fi
