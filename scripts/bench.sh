#!/usr/bin/env bash
# bench.sh [NAME…]   Builds everything and runs every benchmark, one after the other, or those named.
# A benchmark is an executable script bench/NAME.bench.sh. It is started in the checkout's folder,
# with TESSARY_X86_BUILD and TESSARY_NATIVE_BUILD telling the build folders; it runs Windows programs
# through scripts/wine.sh and prints one line for each figure: what, how much, unit.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib/paths.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/wine.sh"

build x86
build native
unset DISPLAY
ensure_wine_environment
export TESSARY_X86_BUILD=$x86_build TESSARY_NATIVE_BUILD=$native_build
cd "$root"

names=("$@")
if ! ((${#names[@]})); then
    for script in bench/*.bench.sh; do
        [[ -x $script ]] || continue
        script=${script#bench/}
        names+=("${script%.bench.sh}")
    done
fi
((${#names[@]})) || die "there is no benchmark in bench/"
for name in "${names[@]}"; do
    [[ -x bench/$name.bench.sh ]] || die "there is no benchmark bench/$name.bench.sh"
    say "$name"
    "bench/$name.bench.sh"
done
