#!/usr/bin/env bash
# dependencies.sh [PRESET…]   Puts the libraries of dependencies/versions, built for each preset (x86
#                             and native when none is named), into build/deps/PRESET.
# They are built once: the cache keeps each under a key of its version, patches, recipe, compiler
# and flags, and of the libraries it needs; any checkout with the same key takes it from there.
# A library is a line in dependencies/versions and a recipe dependencies/NAME.sh, which sets
# cmake_options, and where the package has no CMake build of its own, cmake_folder: one of ours,
# dependencies/NAME/. Patches in that folder are applied to the source, in the order of their names.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib/paths.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/packages.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/source_packages.sh"

recipes=$root/scripts/dependencies
libraries=$cache/libraries
kept_days=60 # a library that no checkout has asked for in so many days goes

# preset_options PRESET: how CMake is told the compiler, one option a line.
preset_options() {
    case $1 in
    x86) printf '%s\n' "-DCMAKE_TOOLCHAIN_FILE=$root/cmake/mingw-i686.cmake" -DCMAKE_BUILD_TYPE=Release ;;
    native)
        # Instrumented like our own code, so that a wild pointer shows where it is used; and for
        # the fuzzers, which otherwise would not see the paths through a library.
        local flags='-fsanitize=address,fuzzer-no-link -fno-omit-frame-pointer'
        printf '%s\n' -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
            -DCMAKE_BUILD_TYPE=RelWithDebInfo "-DCMAKE_C_FLAGS=$flags" "-DCMAKE_CXX_FLAGS=$flags"
        ;;
    *) die "there is no preset $1: x86 or native" ;;
    esac
}

compiler_version() {
    case $1 in
    x86) i686-w64-mingw32-gcc-posix --version ;;
    native) clang --version ;;
    esac | head -n 1
}

# library_key NAME PACKAGE UPSTREAM NEEDED…: all that the finished library depends on.
library_key() {
    {
        printf '%s\n' "$2 $3" "$common_key"
        cat "$recipes/$1.sh"
        if [[ -d $recipes/$1 ]]; then cat "$recipes/$1"/*; fi
        local needed
        for needed in "${@:4}"; do printf '%s\n' "${keys[$needed]}"; done
    } | sha256sum | cut -c 1-32
}

# apply_patches: those of the library that is being built.
apply_patches() {
    local change
    for change in "$recipes/$name"/*.patch; do
        [[ -f $change ]] || continue
        patch --batch --fuzz=0 --strip=1 --directory="$work/source" <"$change" >>"$work/log" 2>&1 ||
            die "$change does not fit the source of $package; see $work/log"
    done
}

# provide_library NAME PACKAGE UPSTREAM NEEDED…: from the cache, where it is built when it is new.
provide_library() {
    local name=$1 package=$2 upstream=$3
    keys[$name]=$(library_key "$@")
    local kept=$libraries/$preset-$name-${keys[$name]}
    local stamp=$prefix/.built/$name
    if [[ -f $stamp && $(<"$stamp") == "${keys[$name]}" ]]; then return; fi
    [[ -f $kept/.complete ]] || build_library
    touch "$kept/.complete"
    rm -f "$stamp"
    mkdir -p "$prefix/.built"
    cp -a "$kept/files/." "$prefix/"
    printf '%s' "${keys[$name]}" >"$stamp"
}

# build_library: the one that is provided, into `kept`.
build_library() {
    local archive work=$root/build/deps/building/$preset-$name
    archive=$(source_archive "$package" "$upstream")
    say "building $package $upstream for $preset"
    rm -rf "$kept" "$work"
    mkdir -p "$work" "$kept"
    dpkg-source -x "$archive" "$work/source" >"$work/log" 2>&1 ||
        die "the source of $package could not be unpacked; see $work/log"
    apply_patches

    local cmake_options=() cmake_folder=$work/source
    # shellcheck source=/dev/null
    source "$recipes/$name.sh"
    {
        cmake -G Ninja -S "$cmake_folder" -B "$work/build" "${toolchain[@]}" \
            "-DCMAKE_INSTALL_PREFIX=$kept/files" "-DCMAKE_PREFIX_PATH=$prefix" \
            -DCMAKE_INSTALL_LIBDIR:STRING=lib -DCMAKE_POSITION_INDEPENDENT_CODE=ON \
            -DCMAKE_SUPPRESS_DEVELOPER_WARNINGS=ON "${cmake_options[@]}" &&
            cmake --build "$work/build" && cmake --install "$work/build"
    } >>"$work/log" 2>&1 || {
        tail -n 30 "$work/log" >&2
        die "$package could not be built for $preset; see $work/log"
    }
    install -D --mode=644 "$work/source/debian/copyright" "$kept/files/licences/$name.txt"
    # Another checkout would find this one gone.
    if grep -rIlF "$root" "$kept/files" >&2; then
        die "$package for $preset names this checkout in the files above"
    fi
    touch "$kept/.complete"
    rm -rf "$work"
}

build_preset() {
    preset=$1
    prefix=$root/build/deps/$preset
    local -A keys=()
    mapfile -t toolchain < <(preset_options "$preset")
    common_key=$(compiler_version "$preset"; printf '%s\n' "${toolchain[@]//"$root"/}"; cat "$root/cmake/mingw-i686.cmake")
    local name package upstream needed
    while read -r name package upstream needed; do
        case $name in
        "" | "#"*) ;;
        # shellcheck disable=SC2086  # names, one word each
        *) provide_library "$name" "$package" "$upstream" $needed </dev/null ;;
        esac
    done <"$recipes/versions"
    if [[ $preset == x86 ]]; then copy_ready_made_licences; fi
}

# forget_unused: libraries that were not asked for in a long time.
forget_unused() {
    local complete
    find "$libraries" -mindepth 2 -maxdepth 2 -name .complete -mtime "+$kept_days" |
        while read -r complete; do rm -rf "${complete%/*}"; done
}

# What comes ready-made and is linked into our programs, too, brings its licence along.
copy_ready_made_licences() {
    local name package
    while read -r name package; do
        install -D --mode=644 "/usr/share/doc/$package/copyright" "$prefix/licences/$name.txt"
    done <<<'zlib libz-mingw-w64-dev
mingw-w64 mingw-w64-i686-dev
gcc gcc-mingw-w64-base'
}

(($#)) || set -- x86 native
install_packages "${build_packages[@]}"
mkdir -p "$libraries"
for preset; do
    with_lock dependencies build_preset "$preset"
done
forget_unused
