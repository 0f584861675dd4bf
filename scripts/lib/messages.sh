# What the scripts say. All of it goes to standard error, which leaves standard output to programs.
# shellcheck shell=bash

say() { printf '== %s\n' "$*" >&2; }

die() {
    printf 'error: %s\n' "$*" >&2
    exit 1
}
