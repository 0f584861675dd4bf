#!/usr/bin/env bash
# From the start to the window, with 200 plug-ins in the folder beside none.
set -euo pipefail

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

mkdir "$work/plugins" "$work/empty"
for ((i = 0; i < 100; ++i)); do
    cp "$TESSARY_X86_BUILD/bin/iftessjpeg.spi" "$work/plugins/jpeg$i.spi"
    cp "$TESSARY_X86_BUILD/bin/iftesspng.spi" "$work/plugins/png$i.spi"
done
scripts/wine.sh "$TESSARY_X86_BUILD/bench/start_bench.exe" "$(scripts/wine.sh --path "$work/plugins")" 200 \
    "$(scripts/wine.sh --path "$work/empty")" | tr -d '\r'
