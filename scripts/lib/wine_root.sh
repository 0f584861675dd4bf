# Where 32-bit Wine comes from: the machine's own packages where apt agrees to install them, else
# an i386 Debian of its own in the cache, made once.
# shellcheck shell=bash
source "${BASH_SOURCE[0]%/*}/paths.sh"
source "${BASH_SOURCE[0]%/*}/packages.sh"
source "${BASH_SOURCE[0]%/*}/debian_sources.sh"
source "${BASH_SOURCE[0]%/*}/locale.sh"

wine_loader=/usr/lib/wine/wine       # the 32-bit one; the same place in both cases
wine_server=/usr/lib/wine/wineserver32
wine_root=$cache/wine-i386
wine_root_complete=$wine_root/.complete

# ensure_wine: has 32-bit Wine installed, one way or the other.
ensure_wine() {
    if wine_is_native || [[ -f $wine_root_complete ]]; then return; fi
    with_lock wine install_wine
}

wine_is_native() { [[ -x $wine_loader && -x $wine_server ]]; }

install_wine() {
    if wine_is_native || [[ -f $wine_root_complete ]]; then return; fi # another caller was faster
    install_packages "${wine_packages[@]}"
    if install_native_wine; then
        ensure_japanese_locale
    else
        make_wine_root
    fi
}

# Some machines mirror an i386 index that is out of step, and apt refuses. Then the machine gets
# back the list of architectures it had.
install_native_wine() {
    local added=
    if ! dpkg --print-foreign-architectures | grep -qx i386; then
        added=1
        as_root dpkg --add-architecture i386
        as_root apt-get update -qq >&2 || true
    fi
    local wanted=(wine32:i386 fonts-wine fonts-ipafont-gothic)
    if apt-get install --simulate -q "${wanted[@]}" >/dev/null 2>&1 &&
        apt_install "${wanted[@]}" && wine_is_native; then
        return 0
    fi
    if [[ -n $added ]]; then
        as_root dpkg --remove-architecture i386 || true
        as_root apt-get update -qq >&2 || true
    fi
    return 1
}

make_wine_root() {
    install_packages debootstrap
    local mirror suite
    read -r mirror suite < <(debian_mirror)
    say "apt offers no wine32 here; making an i386 Debian $suite in $wine_root"
    as_root rm -rf --one-file-system "$wine_root"
    as_root debootstrap --arch=i386 --variant=minbase \
        --include=libwine,wine32,fonts-wine,fonts-ipafont-gothic,locales \
        "$suite" "$wine_root" "$mirror" >"$cache/wine-i386.log" 2>&1 ||
        die "debootstrap failed; see $cache/wine-i386.log"
    as_root rm -rf "$wine_root"/var/cache/apt/archives "$wine_root"/var/lib/apt/lists
    ensure_japanese_locale "$wine_root"
    as_root touch "$wine_root_complete"
}

# in_wine_root COMMAND ARGS…: replaces this process with COMMAND where 32-bit Wine is installed,
# in the same folder, with the same environment and the same files around it.
in_wine_root() {
    if wine_is_native; then exec "$@"; fi
    local propagation=slave
    # Inside another root whose "/" is no mount of its own, that cannot be set.
    grep -q '^[^ ]* [^ ]* [^ ]* [^ ]* / ' /proc/self/mountinfo || propagation=unchanged
    local enter=(unshare --mount "--propagation=$propagation"
        sh "$root/scripts/lib/enter_wine_root.sh" "$wine_root" "$UID" "$PWD" "$root" "$cache")
    if ((EUID == 0)); then
        exec "${enter[@]}" "$@"
    fi
    exec sudo -E "${enter[@]}" env "HOME=$HOME" "PATH=$PATH" "USER=${USER:-$(id -un)}" "$@"
}
