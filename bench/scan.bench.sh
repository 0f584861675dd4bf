#!/usr/bin/env bash
# Opening a folder of 100,000 files: how long collecting them takes beside a bare enumeration of the
# same folder, both under Wine and in the same process; and listing them as the viewer does.
set -euo pipefail

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

(cd "$work" && seq --format 'picture %06.0f.jpg' 100000 | tr '\n' '\0' | xargs --null touch)
scripts/wine.sh "$TESSARY_X86_BUILD/bench/scan_bench.exe" "$(scripts/wine.sh --path "$work")" |
    tr -d '\r'
