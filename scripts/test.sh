#!/usr/bin/env bash
# test.sh          Builds everything and runs every test: the Windows programs under Wine, the
#                  portable cores under the sanitizers, and each fuzzer for a short while
#                  (FUZZ_SECONDS, 10).
# test.sh NAME…    Only the test programs of these names (plugin_test, fuzz_png), both as Windows
#                  programs and under the sanitizers where there are both, and what they need.
# The last line is "N passed, N failed, N skipped"; the status is 0 only when all passed.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/wine.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/test_results.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/fuzz.sh"

results=$(mktemp -d)
trap 'rm -rf "$results"' EXIT

# tests_of PRESET: the names of its tests, one a line.
tests_of() { ctest --test-dir "$root/build/$1" --show-only | sed -nE 's/^ *Test +#[0-9]+: //p'; }

# choose_tests PRESET: sets `chosen` to those that are wanted, and `targets` to what has to be built.
choose_tests() {
    mapfile -t chosen < <(tests_of "$1" | grep -xF "$(printf '%s\n' "${names[@]}")")
    targets=("${chosen[@]}")
    if [[ " ${chosen[*]} " == *program* ]]; then targets=(all); fi # no programs themselves
}

# run_ctest PRESET GTEST_OUTPUT [NAME…]: goes on after failures, which the results tell.
run_ctest() {
    local preset=$1 output=$2 selection=()
    shift 2
    if (($#)); then selection=(--tests-regex "^($(IFS='|' && printf '%s' "$*"))\$"); fi
    GTEST_OUTPUT=$output ctest --test-dir "$root/build/$preset" --output-on-failure \
        --parallel "$(nproc)" --timeout 300 --output-junit "$results/$preset.xml" \
        "${selection[@]}" || true
    [[ -f $results/$preset.xml ]] || die "ctest could not run the tests of $preset"
    count_ctest "$preset" "$results/$preset.xml" "$results/$preset"
}

# run_preset PRESET [NAME…]
run_preset() {
    local preset=$1 folder=$results/$1
    shift
    mkdir "$folder"
    if [[ $preset == x86 ]]; then
        # Test windows stay off the user's own display.
        unset DISPLAY
        ensure_wine_environment
        say "running the tests under Wine"
        run_ctest x86 "xml:$(windows_path "$folder")\\" "$@"
    else
        say "running the native tests under the sanitizers"
        UBSAN_OPTIONS=print_stacktrace=1 run_ctest native "xml:$folder/" "$@"
    fi
}

# run_named: a name may be in one preset or in both.
run_named() {
    local preset name
    configure x86
    configure native
    for name in "${names[@]}"; do
        { tests_of x86 && tests_of native; } | grep -xF "$name" >/dev/null ||
            die "there is no test $name"
    done
    for preset in x86 native; do
        choose_tests "$preset"
        ((${#chosen[@]})) || continue
        build "$preset" "${targets[@]}"
        run_preset "$preset" "${chosen[@]}"
    done
}

run_all() {
    build x86
    build native
    run_preset x86
    run_preset native
    say "running the fuzzers"
    run_fuzzers
}

names=("$@")
if (($#)); then run_named; else run_all; fi
print_results
