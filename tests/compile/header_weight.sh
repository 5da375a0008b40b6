#!/usr/bin/env bash
# The headers that most programs include stay light: half of what they once were, 88,000 lines, and without those of the
# standard headers that made them so.
#
#   header_weight.sh COMPILER FOLDER...
set -euo pipefail
compiler=$1
shift

include_flags=()
for folder in "$@"; do include_flags+=("-I$folder"); done

failed=0
for header in Math/Vector2.h Math/VectorView2.h Math/Matrix2.h; do
    preprocessed=$("$compiler" -std=c++20 "${include_flags[@]}" -E -x c++ - <<<"#include <$header>")
    lines=$(wc -l <<<"$preprocessed")
    echo "$header: $lines lines"
    # An empty result would be a light one, too.
    grep -q 'class .*Expected' <<<"$preprocessed" && [ "$lines" -lt 44000 ] || failed=1
    entered=$(sed -nE 's/^# [0-9]+ "([^"]*)".*/\1/p' <<<"$preprocessed" | sort -u)
    if grep -E '/(algorithm|complex|functional|future|ios|memory|ostream|sstream|vector)$' <<<"$entered"; then
        echo "$header reaches what it does not need"
        failed=1
    fi
done
exit "$failed"
