#!/bin/sh
# Runs every test and ends with a line that counts them: the tree's own checks, the unit tests of both builds, and the
# journeys of the real program on a virtual display.
set -u
cd "$(dirname "$0")/.."
passed=0
failed=0

# count NAME COMMAND...: one more test
count() {
    name=$1
    shift
    if "$@"; then
        passed=$((passed + 1))
        echo "ok: $name"
    else
        failed=$((failed + 1))
        echo "FAILED: $name"
    fi
}

# count_unit_tests FOLDER: adds what the test program of a build counts
count_unit_tests() {
    report=$1/unit_tests.txt
    (cd "$1" && ./unit_tests --gtest_brief=1) >"$report" 2>&1
    status=$?
    cat "$report"
    good=$(sed -n 's/^\[  PASSED  \] \([0-9]*\) tests\{0,1\}\..*/\1/p' "$report" | tail -n 1)
    bad=$(sed -n 's/^\[  FAILED  \] \([0-9]*\) tests\{0,1\}, listed below:/\1/p' "$report" | tail -n 1)
    passed=$((passed + ${good:-0}))
    failed=$((failed + ${bad:-0}))
    # A crash or a sanitizer's report ends the program without a count of failures.
    if [ "$status" -ne 0 ] && [ -z "$bad" ]; then
        failed=$((failed + 1))
        echo "FAILED: the unit tests in $1 ended with status $status"
    fi
}

count "layers and headers" python3 tools/check_tree.py
count_unit_tests build
count_unit_tests build-sanitize
for journey in tests/journeys/*.py; do
    name=$(basename "$journey" .py)
    case "$name" in
    journey) ;; # what the journeys share
    *) count "journey $name" tests/journeys/run_journey.sh "$name" "build/journeys/$name" ;;
    esac
done

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
