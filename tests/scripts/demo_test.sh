#!/usr/bin/env bash
# Runs scripts/demo in a project of stubs and looks at what it calls the example with.
#
#   demo_test.sh DEMO
set -euo pipefail

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
project="$work/a project"
caller="$work/caller"
mkdir -p "$project/scripts" "$project/build/demo/examples/converter_emi" "$project/examples/converter_emi/data" \
    "$work/bin" "$caller"
cp "$1" "$project/scripts/demo"
stub() { printf '#!/bin/sh\n%s\n' "$2" >"$1"; chmod +x "$1"; }
stub "$project/scripts/setup" 'exit 0'
stub "$work/bin/cmake" 'pwd >>"$CMAKE_FOLDERS"'
# The example: where it runs, and the real path of every argument that is one.
stub "$project/build/demo/examples/converter_emi/converter_emi" 'pwd; for a in "$@"; do printf "%s\n" "$a"; done; realpath -m "$1"'
export CMAKE_FOLDERS="$work/folders" PATH="$work/bin:$PATH"

cd "$caller"
output=$("$project/scripts/demo" --output mine --window hann)
expected="Building (the first time takes some minutes) ...
$caller
../a project/examples/converter_emi/data/buck_converter.csv
--capacitor
output_voltage_V
capacitor_current_A
--output
../a project/output/converter_emi
--output
mine
--window
hann
$project/examples/converter_emi/data/buck_converter.csv"
diff <(printf '%s\n' "$expected") <(printf '%s\n' "$output") || { echo "called with (right) is not what is expected (left)"; exit 1; }
[ "$(sort -u "$CMAKE_FOLDERS")" = "$project" ] || { echo "built in $(cat "$CMAKE_FOLDERS")"; exit 1; }

# From the project's own folder the paths are as short as they can be, and no option is no option.
cd "$project"
[ "$(scripts/demo | sed -n 3p)" = examples/converter_emi/data/buck_converter.csv ] || { echo "long path"; exit 1; }

# With --netlist the simulator's example runs first, and the main example reads its record.
mkdir -p build/demo/examples/transient
stub "$project/build/demo/examples/transient/transient" 'printf "simulates %s\n" "$1"'
stub "$work/bin/ngspice" 'exit 0'
lines=$(scripts/demo --netlist --window hann)
grep -q '^simulates examples/converter_emi/data/buck_converter.cir$' <<<"$lines" || { echo "no simulation"; exit 1; }
grep -q '^output/transient/record.csv$' <<<"$lines" || { echo "another record"; exit 1; }
grep -q '^hann$' <<<"$lines" || { echo "options lost"; exit 1; }
if scripts/demo --netlist --simulate >/dev/null 2>&1; then echo "two simulators at once"; exit 1; fi
