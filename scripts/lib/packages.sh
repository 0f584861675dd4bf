# Debian packages: which ones each task needs, and installing those that are missing.
# shellcheck shell=bash
source "${BASH_SOURCE[0]%/*}/privilege.sh"

# shellcheck disable=SC2034  # read by the scripts that source this file
{
    build_packages=(cmake ninja-build g++-mingw-w64-i686-posix binutils-mingw-w64-i686
        libz-mingw-w64-dev zlib1g-dev nasm clang libclang-rt-dev llvm googletest dpkg-dev
        python3)
    wine_packages=(xvfb x11-utils locales util-linux)
    screenshot_packages=(imagemagick xdotool)
    check_packages=(clang-format clang-tidy)
    sample_packages=(imagemagick)
    manual_packages=(python3 python3-markdown)
}

# install_packages NAME…: installs those that are missing; does nothing, quickly, when none is.
install_packages() {
    command -v apt-get >/dev/null ||
        die "apt-get is missing: the scripts need Debian, with these packages: $*"
    local -A installed=()
    local state name missing=()
    while read -r state name; do
        [[ $state == installed ]] && installed[$name]=1
    done < <(dpkg-query --show --showformat '${db:Status-Status} ${Package}\n' "$@" 2>/dev/null)
    for name in "$@"; do
        [[ -n ${installed[$name]:-} ]] || missing+=("$name")
    done
    ((${#missing[@]})) || return 0

    say "installing ${missing[*]}"
    apt_install "${missing[@]}" || {
        say "refreshing the package lists"
        as_root apt-get update -qq >&2
        apt_install "${missing[@]}" || die "apt could not install: ${missing[*]}"
    }
}

apt_install() {
    DEBIAN_FRONTEND=noninteractive as_root apt-get install -qq -y --no-install-recommends \
        -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0 "$@" </dev/null >&2
}
