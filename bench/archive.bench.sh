#!/usr/bin/env bash
# Listing a ZIP archive through the plug-in, beside libarchive alone, and going through its members.
set -euo pipefail

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for count in 2000 50000; do
    scripts/wine.sh "$TESSARY_X86_BUILD/bench/archive_bench.exe" "$count" \
        "$(scripts/wine.sh --path "$work")" | tr -d '\r'
done
