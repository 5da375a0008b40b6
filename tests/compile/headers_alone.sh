#!/usr/bin/env bash
# Compiles every header below the given folders alone, with all warnings as errors, and looks at what each includes.
#
#   headers_alone.sh COMPILER FOLDER...
set -euo pipefail
compiler=$1
shift

flags=(-std=c++20 -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
for folder in "$@"; do flags+=("-I$folder"); done

count=0
failed=0
for folder in "$@"; do
    while IFS= read -r header; do
        count=$((count + 1))
        name=${header#"$folder"/}
        # Twice, so that a missing include guard shows.
        source=$(printf '#include <%s>\n#include <%s>\n' "$name" "$name")
        "$compiler" "${flags[@]}" -fsyntax-only -x c++ - <<<"$source" || { echo "$name does not compile alone"; failed=1; }
        # The files that the preprocessor entered, not those it only asked for: the standard library asks for oneTBB.
        entered=$("$compiler" "${flags[@]}" -E -x c++ - <<<"$source" | sed -nE 's/^# [0-9]+ "([^"]*)".*/\1/p' | sort -u)
        grep -qF "$name" <<<"$entered" || { echo "$name was not entered"; failed=1; }
        if grep -E '/(mkl|tbb|oneapi|immintrin|omp\.h)' <<<"$entered"; then
            echo "$name reaches a header that callers may not have"
            failed=1
        fi
    done < <(find "$folder" -name '*.h' | sort)
done
echo "$count headers"
[ "$count" -gt 40 ] && [ "$failed" = 0 ]
