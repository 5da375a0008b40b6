#!/usr/bin/env bash
# Installs the build into a clean prefix and builds and runs a consumer's project against it, first by find_package, then
# by pkg-config.
#
#   consume_installation.sh CMAKE BUILD_DIR CONSUMER_DIR WORK_DIR COMPILER PKG_CONFIG VERSION
set -euo pipefail
cmake=$1 build=$2 consumer=$3 work=$4 compiler=$5 pkg_config=$6 version=$7

rm -rf "$work"
mkdir -p "$work"
"$cmake" --install "$build" --prefix "$work/prefix" >"$work/install.log"

for library in "$work"/prefix/lib*/libTVN*.so; do
    # The name that programs ask for at run time bears the major version, and its file is the one of the whole version.
    soname=$(basename "$library").${version%%.*}
    readelf -d "$library" | grep -qF "Library soname: [$soname]" || { echo "$library is not called $soname" >&2; exit 1; }
    [ "$(readlink -f "$library")" = "$(readlink -f "$work"/prefix)${library#"$work"/prefix}.$version" ] \
        || { echo "$library is not version $version" >&2; exit 1; }
    if readelf -d "$library" | grep -E 'RPATH|RUNPATH'; then
        echo "$library carries a run path" >&2
        exit 1
    fi
done
if grep -rniE 'onemkl|libmkl|TBB::|TVNMathObjects|TVNMathCompileSettings' "$work"/prefix/lib*/cmake "$work"/prefix/lib*/pkgconfig; then
    echo 'the package mentions what a consumer does not have' >&2
    exit 1
fi

# A consumer's machine has no headers of the libraries behind this one.
"$cmake" -G Ninja -S "$consumer" -B "$work/consumer" -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_PREFIX_PATH="$work/prefix" \
    -DEXPECTED_VERSION="$version" -DCMAKE_DISABLE_FIND_PACKAGE_TBB=ON >"$work/configure.log"
"$cmake" --build "$work/consumer" >"$work/build.log"
"$work/consumer/consumer"

export PKG_CONFIG_PATH
PKG_CONFIG_PATH=$(echo "$work"/prefix/lib*/pkgconfig)
[ "$("$pkg_config" --modversion tvnmath)" = "$version" ]
# shellcheck disable=SC2046
"$compiler" -std=c++20 "$consumer/main.cpp" -o "$work/by_pkg_config" $("$pkg_config" --cflags --libs tvnmath)
LD_LIBRARY_PATH=$("$pkg_config" --variable=libdir tvnmath) "$work/by_pkg_config"
