#!/usr/bin/env bash
# dependencies.sh [PRESET…]   Builds the libraries of dependencies/versions for each preset (x86 and
#                             native when none is named) into build/deps/PRESET. What is built
#                             already with the same versions, options and compiler is left alone.
# A library is a line in dependencies/versions and a recipe dependencies/NAME.sh, which sets
# cmake_options, and where the package has no CMake build of its own, cmake_folder: one of ours,
# dependencies/NAME/. Patches in that folder are applied to the source, in the order of their names.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib/paths.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/packages.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/source_packages.sh"

recipes=$root/scripts/dependencies

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

# build_key NAME PACKAGE UPSTREAM: all that the finished library depends on.
build_key() {
    {
        printf '%s\n' "$2 $3" "$common_key"
        cat "$recipes/$1.sh"
        if [[ -d $recipes/$1 ]]; then cat "$recipes/$1"/*; fi
    } | sha256sum
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

build_library() {
    local name=$1 package=$2 upstream=$3
    local stamp=$prefix/.built/$name key
    key=$(build_key "$@")
    if [[ -f $stamp && $(<"$stamp") == "$key" ]]; then return; fi

    local archive work=$root/build/deps/building/$preset-$name
    archive=$(source_archive "$package" "$upstream")
    say "building $package $upstream for $preset"
    rm -rf "$stamp" "$work"
    mkdir -p "$work" "$prefix/.built"
    dpkg-source -x "$archive" "$work/source" >"$work/log" 2>&1 ||
        die "the source of $package could not be unpacked; see $work/log"
    apply_patches

    local cmake_options=() cmake_folder=$work/source
    # shellcheck source=/dev/null
    source "$recipes/$name.sh"
    {
        cmake -G Ninja -S "$cmake_folder" -B "$work/build" "${toolchain[@]}" \
            "-DCMAKE_INSTALL_PREFIX=$prefix" "-DCMAKE_PREFIX_PATH=$prefix" \
            -DCMAKE_INSTALL_LIBDIR:STRING=lib -DCMAKE_POSITION_INDEPENDENT_CODE=ON \
            -DCMAKE_SUPPRESS_DEVELOPER_WARNINGS=ON "${cmake_options[@]}" &&
            cmake --build "$work/build" && cmake --install "$work/build"
    } >>"$work/log" 2>&1 || {
        tail -n 30 "$work/log" >&2
        die "$package could not be built for $preset; see $work/log"
    }
    install -D --mode=644 "$work/source/debian/copyright" "$prefix/licences/$name.txt"
    printf '%s' "$key" >"$stamp"
    rm -rf "$work"
}

build_preset() {
    preset=$1
    prefix=$root/build/deps/$preset
    mapfile -t toolchain < <(preset_options "$preset")
    common_key=$(compiler_version "$preset"; printf '%s\n' "${toolchain[@]}"; cat "$root/cmake/mingw-i686.cmake")
    while read -r name package upstream; do
        case $name in
        "" | "#"*) ;;
        *) build_library "$name" "$package" "$upstream" </dev/null ;;
        esac
    done <"$recipes/versions"
    if [[ $preset == x86 ]]; then copy_ready_made_licences; fi
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
for preset; do
    with_lock dependencies build_preset "$preset"
done
