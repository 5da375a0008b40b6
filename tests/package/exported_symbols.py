"""Compares the dynamic symbols that a library defines with a committed list.

    exported_symbols.py LIBRARY LIST VERSION_NODE [--update]

Every symbol must bear the version node, TVNMATH_1 for example, and the node's own name is the only other thing
exported; the list leaves both out. With --update the list is written anew: look at the difference before you commit it,
it is the binary interface.
"""

import difflib
import pathlib
import subprocess
import sys


def defined_symbols(library, version_node):
    """The demangled names, and those that are exported without the version or under another one."""
    output = subprocess.run(
        ["nm", "-D", "-C", "--defined-only", library], check=True, capture_output=True, text=True
    ).stdout
    # Address, type and name; the address differs from build to build.
    names = {line.split(" ", 2)[2] for line in output.splitlines()} - {version_node}
    suffix = f"@@{version_node}"
    return sorted({name.removesuffix(suffix) for name in names}), sorted(n for n in names if not n.endswith(suffix))


def main():
    library, listed, version_node = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3]
    actual, unversioned = defined_symbols(library, version_node)
    if "--update" in sys.argv[4:]:
        listed.write_text("\n".join(actual) + "\n")
        return 0
    difference = list(
        difflib.unified_diff(listed.read_text().splitlines(), actual, "listed", "exported", lineterm="", n=0)
    )
    difference += [f"without the version {version_node}: {name}" for name in unversioned]
    print("\n".join(difference) or f"{len(actual)} symbols, all as listed")
    return 1 if difference or not actual else 0


sys.exit(main())
