# Work that only one script at a time may do.
# shellcheck shell=bash
source "${BASH_SOURCE[0]%/*}/paths.sh"

# with_lock NAME COMMAND ARGS…: waits for its turn. What COMMAND leaves running in the background
# does not hold the lock; a COMMAND that fails ends the script, and with it the lock.
with_lock() {
    local lock
    exec {lock}>"$cache/$1.lock"
    shift
    flock "$lock"
    "$@"
    flock --unlock "$lock"
    exec {lock}>&-
}
