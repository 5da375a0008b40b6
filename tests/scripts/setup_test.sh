#!/usr/bin/env bash
# Runs scripts/setup on machines that are made of stubs: what it says, what it asks for, and that it installs nothing
# that the caller does not need.
#
#   setup_test.sh PROJECT_DIR
set -euo pipefail
setup=$1/scripts/setup
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
wrong() { printf '%s\n' "$*"; failed=1; }

# A machine: the ordinary tools, Debian's package tools that know of no installed package, and the user's number.
machine() {
    rm -rf "$work/bin"
    mkdir -p "$work/bin"
    local tool
    for tool in bash dirname cat env mktemp rm mkdir chmod tail find awk sed grep; do ln -s "$(command -v $tool)" "$work/bin/$tool"; done
    printf '#!/bin/sh\nexit 1\n' >"$work/bin/dpkg-query"
    printf '#!/bin/sh\necho %s\n' "$1" >"$work/bin/id"
    printf '#!/bin/sh\necho "$*" >>%s\n' "$work/calls" >"$work/bin/apt-get"
    cp "$work/bin/apt-get" "$work/bin/apt-cache"
    chmod +x "$work"/bin/{dpkg-query,id,apt-get,apt-cache}
    : >"$work/calls"
}
run() { status=0; env -u MKLROOT PATH="$work/bin" "$setup" "$@" >"$work/out" 2>"$work/err" || status=$?; }

machine 1000
run --for library
[ "$status" = 1 ] || wrong "without root and sudo it ends with $status"
grep -q 'needs root or sudo.*g++.*libtbb-dev' "$work/err" || wrong "without root and sudo it says: $(cat "$work/err")"
[ ! -s "$work/calls" ] || wrong "without root and sudo it runs apt-get: $(cat "$work/calls")"

for options in --fast '--for nothing' --for 'library' '--list --fast'; do
    machine 0
    # shellcheck disable=SC2086
    run $options
    [ "$status" = 2 ] && grep -q '^usage: ' "$work/err" || wrong "'$options' is not refused: $status, $(cat "$work/err")"
    [ ! -s "$work/calls" ] || wrong "'$options' runs apt-get"
done

machine 0
run --for library
[ "$status" = 0 ] || wrong "as root it ends with $status: $(cat "$work/err")"
grep -q 'install --no-install-recommends g++ cmake' "$work/calls" || wrong "as root it runs: $(cat "$work/calls")"
grep -q 'install --no-install-recommends libmkl-dev' "$work/calls" || wrong 'oneMKL is not asked for'
if grep -qE 'gtest|benchmark|ngspice' "$work/calls"; then wrong 'building the library asks for what tests need'; fi

lists() { run --for "$1" --list; grep -qx "$2" "$work/out"; }
for package in ngspice gnuplot-nox clang-14 python3-scipy; do
    if lists test-quick "$package"; then wrong "the quick tests ask for $package"; fi
    lists test "$package" || wrong "the tests do not ask for $package"
done
lists test-quick libgtest-dev || wrong 'the quick tests do not ask for libgtest-dev'
lists demo ngspice || wrong 'the demo does not ask for ngspice'
if lists demo libgtest-dev; then wrong 'the demo asks for libgtest-dev'; fi
lists docs doxygen || wrong 'the manual does not ask for doxygen'
if lists docs libmkl-dev; then wrong 'the manual asks for oneMKL'; fi
lists bench libbenchmark-dev || wrong 'the benchmarks do not ask for libbenchmark-dev'

# Whatever any purpose needs is among everything, and every script says what it sets up for.
run --list
cp "$work/out" "$work/all"
for purpose in library demo bench test-quick test; do
    run --for "$purpose" --list
    if grep -vxFf "$work/all" "$work/out"; then wrong "$purpose needs what setup does not install"; fi
done
if grep -snE 'scripts/setup"?$' "$1"/scripts/*; then wrong 'a script sets up for everything'; fi

[ "$failed" = 0 ] && echo 'as expected'
exit "$failed"
