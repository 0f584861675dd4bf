# Short runs of the fuzzers over their committed seeds.
# shellcheck shell=bash
source "${BASH_SOURCE[0]%/*}/paths.sh"
source "${BASH_SOURCE[0]%/*}/messages.sh"
source "${BASH_SOURCE[0]%/*}/test_results.sh"

fuzz_seconds=${FUZZ_SECONDS:-10}

run_fuzzers() {
    local fuzzer
    for fuzzer in "$native_build"/fuzz/*; do
        if [[ -f $fuzzer && -x $fuzzer ]]; then run_fuzzer "$fuzzer"; fi
    done
}

# run_fuzzer PROGRAM: what it finds in new input stays in a folder of its own; the seeds are not
# touched. An input that fails is kept beside the log. What is asked for in one piece is bounded as
# in the 32-bit programs that users run, where no size that a file claims brings more: an answer of
# "no memory" must do there, and here.
run_fuzzer() {
    local name=${1##*/}
    local work=$native_build/fuzz-runs/$name seeds=$root/tests/fuzz/seeds/$name folders
    rm -rf "$work"
    mkdir -p "$work/found"
    folders=("$work/found")
    if [[ -d $seeds ]]; then folders+=("$seeds"); fi
    if ASAN_OPTIONS=allocator_may_return_null=1:max_allocation_size_mb=1536 \
        "$1" "-max_total_time=$fuzz_seconds" -timeout=10 -rss_limit_mb=2048 \
        "-artifact_prefix=$work/" "${folders[@]}" >"$work/log" 2>&1; then
        say "$name: $(sed -n 's/^Done \([0-9]*\) runs.*/\1 inputs/p' "$work/log")"
        count_passed
    else
        tail -n 60 "$work/log" >&2
        say "$name failed; the input and the log are in $work"
        count_failed "fuzzer $name"
    fi
}
