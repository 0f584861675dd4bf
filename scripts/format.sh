#!/usr/bin/env bash
# format.sh [--check]   Formats all our C++ files, or tells which ones are not formatted.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib/packages.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/own_files.sh"

mode=(-i)
case ${1:-} in
'') ;;
--check) mode=(--dry-run --Werror) ;;
*) die "usage: format.sh [--check]" ;;
esac
install_packages "${check_packages[@]}"
own_files '*.cpp' '*.h' | xargs --null --no-run-if-empty clang-format --style=file "${mode[@]}"
