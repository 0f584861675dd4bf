#!/usr/bin/env bash
# wine.sh PROGRAM ARGS…   Runs a Windows program in the project's Wine environment; the first call
#                         installs and prepares it. The exit status is the program's.
# wine.sh --stop          Ends everything that earlier calls left running for the next one.
# wine.sh --path FILE     Prints how a Windows program names FILE.
# PROGRAM may be a file of this machine or a Windows command. The arguments arrive as they are.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib/wine.sh"

case ${1:-} in
'') die "usage: wine.sh PROGRAM ARGS… | --stop | --path FILE" ;;
--path)
    windows_path "$2"
    echo
    ;;
--stop) stop_wine ;;
*)
    ensure_wine_environment
    program=$1
    shift
    if [[ -f $program ]]; then program=$(realpath --no-symlinks -- "$program"); fi
    run_wine "$program" "$@"
    ;;
esac
