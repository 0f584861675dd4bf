# Building a preset, with all that it needs before.
# shellcheck shell=bash
source "${BASH_SOURCE[0]%/*}/paths.sh"
source "${BASH_SOURCE[0]%/*}/packages.sh"

# build PRESET [TARGET…]: packages, libraries, configuration, programs; quick when all is up to date.
build() {
    local preset=$1
    shift
    (($#)) || set -- all
    install_packages "${build_packages[@]}"
    "$root/scripts/dependencies.sh" "$preset"
    say "building $preset"
    (cd "$root" && cmake --preset "$preset" --log-level=WARNING >/dev/null &&
        cmake --build --preset "$preset" --target "$@" >&2)
}
