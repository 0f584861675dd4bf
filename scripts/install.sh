#!/usr/bin/env bash
# install.sh   Installs all that the other scripts need: packages, libraries and 32-bit Wine. They
#              call for it themselves; this does it ahead, and is quick when nothing is missing.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib/packages.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/wine.sh"

install_packages "${build_packages[@]}" "${wine_packages[@]}" "${screenshot_packages[@]}" \
    "${check_packages[@]}" "${manual_packages[@]}"
"$root/scripts/dependencies.sh"
ensure_wine
