# The Debian sources that this machine is configured for, whichever form they are written in.
# shellcheck shell=bash
source "${BASH_SOURCE[0]%/*}/privilege.sh"

# debian_sources: one line "URI suite component" for each, Debian's own suites only.
debian_sources() {
    local lines
    lines=$(list_debian_targets)
    if [[ -z $lines ]]; then
        as_root apt-get update -qq >&2
        lines=$(list_debian_targets)
    fi
    [[ -n $lines ]] || die "apt is configured for no Debian source"
    printf '%s\n' "$lines"
}

# apt itself tells the entries: it reads every form of them, and knows who signed each.
list_debian_targets() {
    # shellcheck disable=SC2016  # apt fills these in
    apt-get indextargets --format '$(REPO_URI)|$(RELEASE)|$(COMPONENT)|$(ORIGIN)' \
        'Created-By: Packages' |
        awk -F'|' '$4 == "Debian" && $3 == "main" { print $1, $2, $3 }' | sort -u
}

# debian_mirror: "URI suite" of the release itself, without its updates.
debian_mirror() {
    debian_sources | awk '$2 !~ /-/ { print $1, $2; exit }'
}
