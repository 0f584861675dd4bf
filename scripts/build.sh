#!/usr/bin/env bash
# build.sh [PRESET…]   Builds x86, or the presets named, with all that they need.
#                      The finished application folder is build/x86/bin.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"

(($#)) || set -- x86
for preset; do
    build "$preset"
done
