#!/bin/sh
# enter_wine_root.sh ROOT UID PWD CHECKOUT CACHE COMMAND ARGS…
# Runs COMMAND in the i386 root as user UID. Expects to be root in a private mount namespace: the
# host's folders are bound into ROOT there, so that the host itself never sees these mounts.
set -eu
new_root=$1 user=$2 folder=$3 checkout=$4 cache=$5
shift 5

# bind FOLDER: a line of the mount table, which writes a blank as \040.
bind() {
    [ -d "$1" ] || return 0
    [ -d "$new_root$1" ] || mkdir -p "$new_root$1"
    case $1$new_root in
    *[[:blank:]]*)
        printf '%s %s none rbind 0 0\n' "$(escape "$1")" "$(escape "$new_root$1")"
        ;;
    *) printf '%s %s none rbind 0 0\n' "$1" "$new_root$1" ;;
    esac
}

escape() { printf '%s' "$1" | sed 's/ /\\040/g; s/\t/\\011/g'; }

# Every folder of the host but those that make up an operating system, which ROOT has of its own.
# Of these only what the call needs is let through.
table=$new_root/.mounts.$$
{
    for top in /*; do
        case $top in
        /bin | /boot | /etc | /lib* | /sbin | /usr | /var | /lost+found) ;;
        *) bind "$top" ;;
        esac
    done
    for needed in "$folder" "$checkout" "$cache"; do
        case $needed in
        /usr/* | /var/* | /etc/* | /boot/*) bind "$needed" ;;
        esac
    done
} >"$table"
mount --all --fstab "$table"
rm -f "$table"
exec chroot --userspec="$user" "$new_root" env --chdir="$folder" "$@"
