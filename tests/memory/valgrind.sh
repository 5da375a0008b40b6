#!/usr/bin/env bash
# Runs test programs under valgrind and fails when it reports an error: memory used beside its block, after its release or
# before it is written, or lost. Whether a test holds does not count here, since valgrind computes long double in 64 bits and
# takes the place of the test kit's heap.
#
#   valgrind.sh FILTER PROGRAM...       FILTER chooses tests, as --gtest_filter does
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
filter=$1
shift

log=$(mktemp)
trap 'rm -f "$log"' EXIT
status=0
for program in "$@"; do
    result=0
    # Children of death tests end as they are meant to, with what they had.
    valgrind --error-exitcode=99 --leak-check=full --errors-for-leak-kinds=definite,indirect --num-callers=30 \
        --child-silent-after-fork=yes --suppressions="$here/../../debugging/valgrind.supp" --log-file="$log" \
        "$program" --gtest_brief=1 --gtest_filter="$filter" >/dev/null 2>&1 || result=$?
    if ! grep -q 'ERROR SUMMARY: 0 errors' "$log"; then
        printf '%s: valgrind reports errors (exit code %s)\n' "$program" "$result" >&2
        cat "$log" >&2
        status=1
    fi
done
exit "$status"
