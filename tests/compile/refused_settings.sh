#!/usr/bin/env bash
# A caller's settings under which the library cannot work end with one sentence that says so, whichever public header
# comes first, and never with what the compiler makes of it.
#
#   refused_settings.sh COMPILER FOLDER...
set -euo pipefail
compiler=$1
shift

include_flags=()
for folder in "$@"; do include_flags+=("-I$folder"); done
failed=0

#   compile HEADER FLAGS...: the errors, in $errors
compile() {
    local header=$1 output
    shift
    output=$("$compiler" "$@" "${include_flags[@]}" -fsyntax-only -x c++ - <<<"#include <$header>" 2>&1 || true)
    errors=$(grep -E '(^|[ :])(fatal )?error: ' <<<"$output" || true)
}

#   refuse HEADER TEXT FLAGS...: the first error holds the text, and nothing follows but that a file is missing
refuse() {
    local header=$1 text=$2
    shift 2
    compile "$header" "$@"
    if ! head -n 1 <<<"$errors" | grep -qF "$text" || tail -n +2 <<<"$errors" | grep -qv 'fatal error: .*C++20'; then
        printf '%s with %s: "%s" was expected, and came\n%s\n' "$header" "$*" "$text" "$errors"
        failed=1
    fi
}

#   accept HEADER FLAGS...
accept() {
    compile "$@"
    [ -z "$errors" ] || { printf '%s: came\n%s\n' "$*" "$errors"; failed=1; }
}

count=0
for folder in "$@"; do
    while IFS= read -r header; do
        name=${header#"$folder"/}
        compile "$name" -std=c++17
        # What needs nothing of C++20 may compile.
        [ -z "$errors" ] || { refuse "$name" 'TVNMath needs C++20' -std=c++17; count=$((count + 1)); }
    done < <(find "$folder" -name '*.h' | sort)
done
echo "$count headers refuse C++17"
[ "$count" -gt 40 ] || failed=1
refuse Math/Math.h 'TVNMath needs C++20' -std=c++17
refuse System/System.h 'TVNMath needs C++20' -std=c++14

# The standard vector's layout is another one in the debug mode; what does not speak of it works.
accept Math/Vector2.h -std=c++20 -D_GLIBCXX_DEBUG
accept Math/Math.h -std=c++20 -D_GLIBCXX_ASSERTIONS
accept Math/Math.h -std=c++20 -D_GLIBCXX_DEBUG -DTVNMATH_BUILT_WITH_GLIBCXX_DEBUG
for header in Math/Math.h Math/Vector.h Math/ComplexVector.h; do
    refuse "$header" 'TVNMath was built without _GLIBCXX_DEBUG' -std=c++20 -D_GLIBCXX_DEBUG
done

# So is the standard string's under its old setting, and the exceptions hold one.
for header in Math/Math.h Math/Vector2.h System/Exceptions.h; do
    refuse "$header" 'TVNMath needs the current std::string' -std=c++20 -D_GLIBCXX_USE_CXX11_ABI=0
done
exit "$failed"
