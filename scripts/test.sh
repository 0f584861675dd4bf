#!/usr/bin/env bash
# test.sh   Builds everything and runs every test: the Windows programs under Wine, the portable
#           cores under the sanitizers, and each fuzzer for a short while (FUZZ_SECONDS, 10).
#           The last line is "N passed, N failed, N skipped"; the status is 0 only when all passed.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/wine.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/test_results.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/fuzz.sh"

results=$(mktemp -d)
trap 'rm -rf "$results"' EXIT

# run_ctest PRESET GTEST_OUTPUT: goes on after failures, which the results tell.
run_ctest() {
    GTEST_OUTPUT=$2 ctest --test-dir "$root/build/$1" --output-on-failure --parallel "$(nproc)" \
        --timeout 300 --output-junit "$results/$1.xml" || true
    [[ -f $results/$1.xml ]] || die "ctest could not run the tests of $1"
    count_ctest "$1" "$results/$1.xml" "$results/$1"
}

build x86
build native

# Test windows stay off the user's own display.
unset DISPLAY
ensure_wine_environment

say "running the tests under Wine"
mkdir "$results/x86" "$results/native"
run_ctest x86 "xml:$(windows_path "$results/x86")\\"

say "running the native tests under the sanitizers"
UBSAN_OPTIONS=print_stacktrace=1 run_ctest native "xml:$results/native/"

say "running the fuzzers"
run_fuzzers

print_results
