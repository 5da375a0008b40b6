#!/usr/bin/env bash
# Installs the build and looks at the installation as its users meet it, one matter at a time.
#
#   installation_test.sh MATTER      one of the functions below
#
# CMake hands over in the environment: CMAKE, BUILD_DIR, WORK_DIR, COMPILER, PKG_CONFIG, PYTHON, GDB,
# VALGRIND, VERSION.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# Installed here first and moved afterwards: nothing in it may remember the place, and blanks may not matter.
prefix="$WORK_DIR/moved to another place"
unset LD_LIBRARY_PATH

fail() { printf '%s\n' "$*" >&2; exit 1; }
libdir() { dirname "$(find "$prefix" -name libTVNMath.so)"; }

# A project's configure step and build; their output appears when they fail.
configure_and_build() {
    local source=$1 build=$2
    shift 2
    rm -rf "$build"
    "$CMAKE" -G Ninja -S "$source" -B "$build" -D CMAKE_CXX_COMPILER="$COMPILER" -D CMAKE_BUILD_TYPE=Debug "$@" \
        >"$build.log" 2>&1 && "$CMAKE" --build "$build" >>"$build.log" 2>&1 || { cat "$build.log" >&2; return 1; }
}

install() {
    rm -rf "$WORK_DIR"
    mkdir -p "$WORK_DIR"
    "$CMAKE" --install "$BUILD_DIR" --prefix "$WORK_DIR/first place" >"$WORK_DIR/install.log"
    mv "$WORK_DIR/first place" "$prefix"
}

libraries() {
    local library soname run_paths count=0
    for library in "$(libdir)"/libTVN*.so; do
        # The name that programs ask for at run time bears the major version, and its file is the one of the whole version.
        soname=$(basename "$library").${VERSION%%.*}
        readelf -d "$library" | grep -qF "Library soname: [$soname]" || fail "$library is not called $soname"
        [ "$(readlink -f "$library")" = "$(readlink -f "$(libdir)")/$(basename "$library").$VERSION" ] \
            || fail "$library is not version $VERSION"
        run_paths=$(readelf -d "$library" | sed -nE 's/.*\((RPATH|RUNPATH)\).*\[(.*)\]/\2/p')
        # shellcheck disable=SC2016
        [ "$run_paths" = '$ORIGIN' ] || fail "the run path of $library is '$run_paths'"
        count=$((count + 1))
    done
    [ "$count" = 2 ] || fail "$count libraries are installed"
}

# What a machine needs that only runs programs, apart from the rest; both together are the whole.
components() {
    local component
    for component in runtime development; do
        rm -rf "$WORK_DIR/$component"
        "$CMAKE" --install "$BUILD_DIR" --component "$component" --prefix "$WORK_DIR/$component" >"$WORK_DIR/$component.log"
        (cd "$WORK_DIR/$component" && find . -not -type d) >"$WORK_DIR/$component.files"
    done
    if grep -vE '/libTVN(Core|Math)\.so\.|/share/doc/' "$WORK_DIR/runtime.files"; then fail 'the runtime component holds more'; fi
    [ "$(grep -cE '/libTVN(Core|Math)\.so\.[0-9]+$' "$WORK_DIR/runtime.files")" = 2 ] || fail 'the runtime component lacks a library'
    if grep -E '/libTVN(Core|Math)\.so\.[0-9.]+$' "$WORK_DIR/development.files"; then fail 'the development component holds libraries'; fi
    diff <(sort "$WORK_DIR/runtime.files" "$WORK_DIR/development.files") <(cd "$prefix" && find . -not -type d | sort) \
        || fail 'the components are not the whole (left), or it is more than they are (right)'
}

# Neither folders of this machine nor what a consumer does not have.
package_files() {
    local files
    mapfile -t files < <(find "$(libdir)/cmake" "$(libdir)/pkgconfig" -type f)
    [ "${#files[@]}" -ge 4 ] || fail "the package files are ${files[*]}"
    if grep -niE 'onemkl|libmkl|omp5|TBB::|TVNMathObjects|TVNMathCompileSettings' "${files[@]}" || grep -nF "$WORK_DIR" "${files[@]}"; then
        fail 'the package mentions what a consumer does not have'
    fi
}

# With the linker dropping libraries that the program does not call itself, and without.
consumer_by_cmake() {
    local flag
    for flag in --as-needed --no-as-needed; do
        # A consumer's machine has no headers of the libraries behind this one.
        configure_and_build "$here/consumer" "$WORK_DIR/consumer by cmake" -D CMAKE_PREFIX_PATH="$prefix" \
            -D EXPECTED_VERSION="$VERSION" -D CMAKE_DISABLE_FIND_PACKAGE_TBB=ON -D CMAKE_EXE_LINKER_FLAGS="-Wl,$flag"
        "$WORK_DIR/consumer by cmake/consumer"
        "$WORK_DIR/consumer by cmake/math_only"
    done
}

consumer_by_pkg_config() {
    local flag source flags
    export PKG_CONFIG_PATH
    PKG_CONFIG_PATH=$(libdir)/pkgconfig
    [ "$("$PKG_CONFIG" --modversion tvnmath)" = "$VERSION" ] || fail "pkg-config's version is another"
    # It writes blanks as a shell's command line has them.
    eval "flags=($("$PKG_CONFIG" --cflags --libs tvnmath))"
    for flag in --as-needed --no-as-needed; do
        for source in main math_only; do
            "$COMPILER" -std=c++20 "$here/consumer/$source.cpp" -o "$WORK_DIR/by_pkg_config" "-Wl,$flag" "${flags[@]}"
            LD_LIBRARY_PATH=$(libdir) "$WORK_DIR/by_pkg_config"
        done
        # The last one again, with the folder in the program instead.
        "$COMPILER" -std=c++20 "$here/consumer/math_only.cpp" -o "$WORK_DIR/by_pkg_config" "-Wl,$flag" "${flags[@]}" \
            "-Wl,-rpath,$(libdir)"
        "$WORK_DIR/by_pkg_config"
    done
}

# A module of a scripting language knows the library by its file name only.
loaded_by_name() {
    "$PYTHON" -c 'import ctypes, sys
library = ctypes.CDLL(sys.argv[1])
version = library._ZN7Tervane4Math7versionEv
version.restype = ctypes.c_char_p
found = version().decode()
sys.exit(found != sys.argv[2] and f"the loaded library is version {found}")' "$(libdir)/libTVNMath.so.${VERSION%%.*}" "$VERSION"
}

# Each example by itself, as somebody tries it who has no more than the installed library.
examples() {
    local example programs tried=0
    for example in "$here"/../../examples/*/; do
        example=$(basename "$example")
        [ "$example" != common ] || continue
        # transient has converter_emi and what both share in it, and compiling these once is enough.
        if [ "$example" = converter_emi ] && [ -d "$here/../../examples/transient" ]; then
            "$CMAKE" -G Ninja -S "$here/../../examples/$example" -B "$WORK_DIR/example $example" -D CMAKE_PREFIX_PATH="$prefix" \
                -D CMAKE_CXX_COMPILER="$COMPILER" >"$WORK_DIR/example.log" 2>&1 || { cat "$WORK_DIR/example.log"; fail "$example"; }
            continue
        fi
        configure_and_build "$here/../../examples/$example" "$WORK_DIR/example $example" -D CMAKE_PREFIX_PATH="$prefix"
        mapfile -t programs < <(find "$WORK_DIR/example $example" -maxdepth 1 -type f -perm -u+x ! -name '*.so')
        [ "${#programs[@]}" = 1 ] || fail "the example $example makes ${#programs[@]} programs"
        tried=$((tried + 1))
    done
    [ "$tried" -ge 3 ] || fail "$tried examples were tried"
    [ "$("$WORK_DIR/example quick_start/quick_start")" = '2 V at 50 kHz' ] || fail 'quick_start prints something else'
    "$WORK_DIR/example legacy/legacy_spectrum" >"$WORK_DIR/legacy.log" || fail 'legacy_spectrum fails'
}

# The installed library has no debug information; a program of the user's has.
debugger() {
    "$COMPILER" -std=c++20 -g -O0 "$here/../debugging/Program.cpp" -o "$WORK_DIR/debugged" -I"$prefix/include" \
        -L"$(libdir)" -lTVNMath -lTVNCore "-Wl,-rpath,$(libdir)"
    "$PYTHON" "$here/../debugging/printers_test.py" "$GDB" "$WORK_DIR/debugged" "$(libdir)"
}

# What the installed suppressions leave over is nothing, unless the program itself makes a mistake.
memory_checkers() {
    local flags=(-std=c++20 -g "$here/../debugging/Checked.cpp" -I"$prefix/include" -L"$(libdir)" -lTVNMath -lTVNCore
        "-Wl,-rpath,$(libdir)") suppressions=$prefix/share/tvnmath log=$WORK_DIR/checked.log mistake
    "$COMPILER" "${flags[@]}" -o "$WORK_DIR/checked"
    "$COMPILER" "${flags[@]}" -fsanitize=thread -o "$WORK_DIR/checked_for_races"

    for mistake in none leak; do
        "$VALGRIND" --leak-check=full --show-leak-kinds=definite,possible --error-exitcode=99 \
            --suppressions="$suppressions/valgrind.supp" "$WORK_DIR/checked" "$mistake" >"$log" 2>&1 || true
        grep -qE 'ERROR SUMMARY: '"$([ $mistake = none ] && echo 0 || echo 1)"' errors' "$log" \
            || { cat "$log" >&2; fail "valgrind on $mistake"; }
    done
    # The option takes no blanks.
    cp "$suppressions/thread-sanitizer.supp" "$WORK_DIR"
    (cd "$WORK_DIR" && TSAN_OPTIONS=suppressions=thread-sanitizer.supp ./checked_for_races >"$log" 2>&1) \
        || { cat "$log" >&2; fail 'the thread sanitizer complains'; }
    if (cd "$WORK_DIR" && TSAN_OPTIONS=suppressions=thread-sanitizer.supp ./checked_for_races race >"$log" 2>&1); then
        fail 'the thread sanitizer does not see a race'
    fi
    grep -q 'SUMMARY: ThreadSanitizer: data race.*Checked.cpp' "$log" || { cat "$log" >&2; fail 'another race was reported'; }
}

# What find_package says to each request, for a version 1.x.y. A range means what it says.
version_requests() {
    local request accepted major=${VERSION%%.*}
    local next=$((major + 1))
    mkdir -p "$WORK_DIR/request"
    cat >"$WORK_DIR/request/CMakeLists.txt" <<'CMAKE'
cmake_minimum_required(VERSION 3.25)
project(Request LANGUAGES NONE)
separate_arguments(REQUEST)
find_package(TVNMath ${REQUEST} QUIET)
message(STATUS "found: ${TVNMath_FOUND}")
CMAKE
    while read -r accepted request; do
        rm -rf "$WORK_DIR/request/build"
        "$CMAKE" -S "$WORK_DIR/request" -B "$WORK_DIR/request/build" -D REQUEST="$request" -D CMAKE_PREFIX_PATH="$prefix" \
            >"$WORK_DIR/request/log" 2>&1 || { cat "$WORK_DIR/request/log"; fail "find_package(TVNMath $request) fails"; }
        grep -qE "found: ($accepted)\$" "$WORK_DIR/request/log" \
            || fail "find_package(TVNMath $request): $(grep found: "$WORK_DIR/request/log"), not $accepted"
    done <<REQUESTS
1|TRUE $major
1|TRUE $major.0
1|TRUE $VERSION
1|TRUE $VERSION EXACT
1|TRUE $major.0...$next
1|TRUE $major.0...<$next
1|TRUE 0.5...$next
1|TRUE $VERSION...$VERSION
0|FALSE 0.5...<$VERSION
0|FALSE $next...$((next + 1))
0|FALSE 0.1...0.9
0|FALSE $next
0|FALSE 0.9
0|FALSE $major.999
0|FALSE $major.999 EXACT
REQUESTS
}

"$1"
