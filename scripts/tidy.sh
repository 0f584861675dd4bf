#!/usr/bin/env bash
# tidy.sh [FILE…]   Runs clang-tidy over our C++ files, or over those named, as they are compiled for
#                   Windows. BUILD_FOLDER may name another build of the preset x86.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib/paths.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/packages.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/own_files.sh"

install_packages "${check_packages[@]}"
if [[ -z ${BUILD_FOLDER:-} ]]; then
    build x86
    BUILD_FOLDER=$x86_build
fi

# clang-tidy reads the database of a compiler that it does not know: tell it where that one has the
# headers of Windows and of the C++ library. The headers of the compiler itself are clang's own.
compiler=i686-w64-mingw32-g++-posix
options=(-p "$BUILD_FOLDER" --quiet
    --extra-arg-before=--target=i686-w64-mingw32 --extra-arg=-nostdinc++ --extra-arg=-nostdlibinc
    --extra-arg=-Wno-unknown-warning-option --extra-arg=-Wno-unused-command-line-argument)
while read -r folder; do
    case $folder in
    */gcc/*/include | */gcc/*/include-fixed) ;;
    *) options+=("--extra-arg=-isystem$folder") ;;
    esac
done < <("$compiler" -E -x c++ -v /dev/null 2>&1 >/dev/null |
    sed -n '/^#include </,/^End of search/s/^ //p' | xargs realpath)

# Only what the database compiles; the rest is another platform's.
listed() {
    local file
    while IFS= read -r -d '' file; do
        if grep -qF "\"$file\"" "$BUILD_FOLDER/compile_commands.json"; then printf '%s\0' "$file"; fi
    done
}

# check OPTION FILE…: OPTION may be empty.
check() {
    local option=$1
    shift
    (($#)) || return 0
    printf '%s\0' "$@" | xargs --null --max-procs="$(nproc)" --max-args=1 \
        clang-tidy "${options[@]}" ${option:+"$option"} 2> >(grep -vE '^[0-9]+ warnings? gen' >&2)
}

if (($#)); then
    mapfile -d '' files < <(realpath --zero -- "$@")
else
    mapfile -d '' files < <(own_files '*.cpp' | listed)
fi
code=() tests=()
for file in "${files[@]}"; do
    if [[ $file == */tests/* ]]; then tests+=("$file"); else code+=("$file"); fi
done

status=0
check '' "${code[@]}" || status=1
# The analyzer spends most of its time in the macros of the tests and finds nothing there.
check '--checks=-clang-analyzer-*' "${tests[@]}" || status=1
exit "$status"
