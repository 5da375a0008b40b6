"""Checks how oneMKL was linked into the library.

    linked_libraries.py LIBRARY LINK_MAP THREADING
"""

import pathlib
import re
import subprocess
import sys

# What each of oneMKL's threading layers runs on; Intel's OpenMP runtime and LLVM's are interchangeable.
RUNTIMES = {"intel_thread": ("libomp", "libiomp5"), "gnu_thread": ("libgomp",), "sequential": ()}


def main():
    library, link_map, threading = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3]
    dynamic = subprocess.run(["readelf", "-d", library], check=True, capture_output=True, text=True).stdout
    needed = re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic)
    # Only members that were really taken appear with their size in the map; archives that were merely read do not.
    archives = set(re.findall(r"lib(mkl_\w+)\.a\([^)]*\)", link_map.read_text()))

    failures = []
    if any("mkl" in name for name in needed):
        failures.append(f"a oneMKL shared library is needed: {needed}")
    if archives != {"mkl_intel_ilp64", f"mkl_{threading}", "mkl_core"}:
        failures.append(f"linked archives: {sorted(archives)}")
    openmp = [name for name in needed if name.startswith(("libomp", "libiomp5", "libgomp"))]
    if len(openmp) != min(len(RUNTIMES[threading]), 1) or not all(name.startswith(RUNTIMES[threading]) for name in openmp):
        failures.append(f"the OpenMP run-time does not fit the threading layer {threading}: {needed}")
    print("\n".join(failures) or f"{sorted(archives)}; needed: {needed}")
    return 1 if failures else 0


sys.exit(main())
