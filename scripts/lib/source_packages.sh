# Sources of Debian packages, fetched and verified by apt into the cache. The machine's own lists
# are left alone: a private set of lists names the deb-src side of its Debian sources.
# shellcheck shell=bash
source "${BASH_SOURCE[0]%/*}/paths.sh"
source "${BASH_SOURCE[0]%/*}/lock.sh"
source "${BASH_SOURCE[0]%/*}/debian_sources.sh"

sources_cache=$cache/sources
source_apt=$cache/apt
source_apt_options=(
    -o "Dir::Etc::sourcelist=$source_apt/sources.list" -o Dir::Etc::sourceparts=/dev/null
    -o "Dir::State::lists=$source_apt/lists" -o "Dir::Cache=$source_apt/cache"
    -o APT::Sandbox::User=root)

# source_archive PACKAGE UPSTREAM: prints the path of the .dsc file, fetching it when it is new.
source_archive() {
    local folder=$sources_cache/$1-$2
    [[ -f $folder/.complete ]] || with_lock sources fetch_source "$1" "$2" "$folder"
    local found=("$folder"/*.dsc)
    printf '%s' "${found[0]}"
}

fetch_source() {
    local package=$1 upstream=$2 folder=$3 version
    if [[ -f $folder/.complete ]]; then return; fi # another caller was faster
    refresh_source_lists
    for version in $(offered_versions "$package" | matching_versions "$upstream"); do
        say "fetching the source of $package $version"
        rm -rf "$folder"
        mkdir -p "$folder"
        # A mirror may list a security update that it does not have yet, or no more. Of archives
        # with the same version apt asks the first one only.
        if download_source sources.list || download_source reversed.list; then
            touch "$folder/.complete"
            return
        fi
    done
    die "this machine's Debian sources did not give $package $upstream; they list:" \
        "$(offered_versions "$package" | tr '\n' ' ')"
}

# download_source LIST: of `package` and `version`, into `folder`.
download_source() {
    (cd "$folder" && apt-get "${source_apt_options[@]}" -o "Dir::Etc::sourcelist=$source_apt/$1" \
        source -qq --download-only --only-source "$package=$version" >&2)
}

# refresh_source_lists: once in each script.
refresh_source_lists() {
    [[ -z ${source_lists_fresh:-} ]] || return 0
    mkdir -p "$source_apt/lists/partial" "$source_apt/cache/archives/partial"
    local keyring=/usr/share/keyrings/debian-archive-keyring.gpg signed=
    [[ ! -f $keyring ]] || signed="[signed-by=$keyring] "
    debian_sources | sed "s|^|deb-src $signed|" >"$source_apt/sources.list"
    tac "$source_apt/sources.list" >"$source_apt/reversed.list"
    apt-get "${source_apt_options[@]}" update -qq >&2 ||
        die "apt could not read the lists of Debian source packages"
    source_lists_fresh=1
}

offered_versions() {
    apt-cache "${source_apt_options[@]}" showsrc --only-source "$1" 2>/dev/null |
        sed -n 's/^Version: //p' | sort -u
}

# matching_versions UPSTREAM: those of the Debian versions on standard input that package it,
# newest first.
matching_versions() {
    local version bare
    while read -r version; do
        bare=${version#*:}
        bare=${bare%-*}
        if [[ ${bare%%[+~]*} == "$1" ]]; then printf '%s\n' "$version"; fi
    done | sort --version-sort --reverse
}
