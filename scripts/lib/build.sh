# Building a preset, with all that it needs before.
# shellcheck shell=bash
source "${BASH_SOURCE[0]%/*}/paths.sh"
source "${BASH_SOURCE[0]%/*}/packages.sh"

# configure PRESET: packages, libraries, configuration; quick when all is up to date.
configure() {
    install_packages "${build_packages[@]}"
    "$root/scripts/dependencies.sh" "$1"
    (cd "$root" && cmake --preset "$1" --log-level=WARNING >/dev/null)
}

# build PRESET [TARGET…]: what it needs before, and the targets; all when none is named.
build() {
    local preset=$1
    shift
    (($#)) || set -- all
    configure "$preset"
    say "building $preset"
    (cd "$root" && cmake --build --preset "$preset" --target "$@" >&2)
}
