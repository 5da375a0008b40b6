#!/usr/bin/env bash
# Takes the library into a parent project by FetchContent, with settings that parents have: no build type, one file for
# all sources, no shared libraries, and the address sanitizer.
#
#   dependency_test.sh CMAKE SOURCE_DIR WORK_DIR COMPILER
set -euo pipefail
cmake=$1 source=$2 work=$3 compiler=$4
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
rm -rf "$work"
mkdir -p "$work"

fail() { printf '%s\n' "$*" >&2; exit 1; }
logged() {
    local log=$work/$1.log
    shift
    "$@" >"$log" 2>&1 || { cat "$log" >&2; fail "$* failed"; }
}

# clang leaves the sanitizer's functions to the program that loads the library.
logged configure "$cmake" -G Ninja -S "$here/parent" -B "$work/build" -D TVNMATH_SOURCE="$source" \
    -D CMAKE_CXX_COMPILER="$compiler" -D CMAKE_CXX_FLAGS='-O0 -fsanitize=address' -D CMAKE_UNITY_BUILD=ON \
    -D CMAKE_UNITY_BUILD_BATCH_SIZE=0 -D BUILD_SHARED_LIBS=OFF
grep -q 'TVNMath exists as a shared library only.*BUILD_SHARED_LIBS' "$work/configure.log" || fail 'BUILD_SHARED_LIBS=OFF got no answer'
grep -q '^CMAKE_BUILD_TYPE:STRING=$' "$work/build/CMakeCache.txt" || fail "the parent's build type was changed"
logged build "$cmake" --build "$work/build"
"$work/build/program" || fail "the parent's program fails"

logged install "$cmake" --install "$work/build" --prefix "$work/prefix"
installed=$(cd "$work/prefix" && find . -type f)
[ "$installed" = ./bin/program ] || fail "installed were $installed"

# By itself the library says what it cannot be, and stops.
if "$cmake" -G Ninja -S "$source" -B "$work/static" -D BUILD_SHARED_LIBS=OFF >"$work/static.log" 2>&1; then
    fail 'a static library was asked for, and got no answer'
fi
tr -s '\n ' '  ' <"$work/static.log" | grep -q 'TVNMath exists as a shared library only' || { cat "$work/static.log"; fail 'the answer is another'; }
