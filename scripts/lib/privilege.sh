# Running a command as root, whoever calls.
# shellcheck shell=bash
source "${BASH_SOURCE[0]%/*}/messages.sh"

# as_root COMMAND ARGS…: keeps the caller's environment.
as_root() {
    if ((EUID == 0)); then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo -E "$@"
    else
        die "\"$1\" must run as root: run the script as root, or install sudo"
    fi
}
