# The locale that gives Windows programs code page 932 and file names in UTF-8.
# shellcheck shell=bash
source "${BASH_SOURCE[0]%/*}/privilege.sh"

japanese_locale=ja_JP.UTF-8

# ensure_japanese_locale [ROOT]: generates it on this machine, or inside another root.
ensure_japanese_locale() {
    local archive=${1:-}/usr/lib/locale/locale-archive enter=()
    if [[ -f $archive ]] && grep -q 'ja_JP\.utf8' "$archive"; then return; fi
    if [[ -n ${1:-} ]]; then enter=(chroot "$1"); fi
    say "generating the locale $japanese_locale"
    as_root "${enter[@]}" localedef -i ja_JP -f UTF-8 "$japanese_locale" ||
        die "the locale $japanese_locale could not be generated (package locales)"
}
