"""Compares the dynamic symbols that a library defines with a committed list.

    exported_symbols.py LIBRARY LIST [--update]

With --update the list is written anew: look at the difference before you commit it, it is the binary interface.
"""

import difflib
import pathlib
import subprocess
import sys


def defined_symbols(library):
    output = subprocess.run(
        ["nm", "-D", "-C", "--defined-only", library], check=True, capture_output=True, text=True
    ).stdout
    # Address, type and name; the address differs from build to build.
    return sorted({line.split(" ", 2)[2] for line in output.splitlines()})


def main():
    library, listed = sys.argv[1], pathlib.Path(sys.argv[2])
    actual = defined_symbols(library)
    if "--update" in sys.argv[3:]:
        listed.write_text("\n".join(actual) + "\n")
        return 0
    difference = list(
        difflib.unified_diff(listed.read_text().splitlines(), actual, "listed", "exported", lineterm="", n=0)
    )
    print("\n".join(difference) or f"{len(actual)} symbols, all as listed")
    return 1 if difference or not actual else 0


sys.exit(main())
