# Adding up what the tests say: single GoogleTest cases where a test program has them, else the
# program as a whole.
# shellcheck shell=bash

passed=0 failed=0 skipped=0 failures=()

count_passed() { passed=$((passed + 1)); }

# count_failed NAME
count_failed() {
    failed=$((failed + 1))
    failures+=("$1")
}

# count_ctest PRESET JUNIT FOLDER: the run that CTest reported in JUNIT, whose GoogleTest programs
# wrote FOLDER/PROGRAM.xml. A program that ended badly, whatever its cases say, is a failure.
count_ctest() {
    local name status cases failed_before
    while read -r name status; do
        cases=$3/$name.xml
        failed_before=$failed
        if [[ -f $cases ]]; then count_cases "$1 $name" "$cases"; fi
        case $status in
        run) [[ -f $cases ]] || count_passed ;;
        fail) ((failed > failed_before)) || count_failed "$1 $name (the program itself)" ;;
        *) skipped=$((skipped + 1)) ;;
        esac
    done < <(sed -nE 's/^.*<testcase name="([^"]*)".* status="([^"]*)".*$/\1 \2/p' "$2")
}

# count_cases LABEL XML
count_cases() {
    local result case
    while read -r result case; do
        case $result in
        passed) count_passed ;;
        failed) count_failed "$1: $case" ;;
        skipped) skipped=$((skipped + 1)) ;;
        esac
    done < <(awk '
        function attribute(name) {
            if (!match($0, " " name "=\"[^\"]*\"")) return ""
            return substr($0, RSTART + length(name) + 3, RLENGTH - length(name) - 4)
        }
        function finish() { if (case_name != "") print result, case_name; case_name = "" }
        /^ *<testcase / {
            finish()
            case_name = attribute("classname") "." attribute("name")
            result = attribute("result") == "completed" ? "passed" : "skipped"
        }
        /^ *<failure / { result = "failed" }
        END { finish() }' "$2")
}

# print_results: the summing-up; false when something failed or nothing ran.
print_results() {
    local name
    for name in "${failures[@]}"; do
        printf 'failed: %s\n' "$name"
    done
    printf '%d passed, %d failed, %d skipped\n' "$passed" "$failed" "$skipped"
    ((failed == 0 && passed > 0))
}
