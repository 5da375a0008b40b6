"""Fails when one of the given object files refers to something that prints or ends the process.

    object_references.py OBJECT...
"""

import subprocess
import sys

FORBIDDEN = {
    "abort", "exit", "_exit", "quick_exit", "__assert_fail",
    "printf", "fprintf", "vprintf", "vfprintf", "puts", "fputs", "putchar", "fputc", "fwrite", "write", "perror",
    "__printf_chk", "__fprintf_chk", "stdout", "stderr",
    "_ZSt4cout", "_ZSt4cerr", "_ZSt4clog", "_ZSt5wcout", "_ZSt5wcerr", "_ZSt5wclog",
}


def main():
    objects = sys.argv[1:]
    found = []
    references = 0
    for name in objects:
        output = subprocess.run(["nm", "-u", name], check=True, capture_output=True, text=True).stdout
        for line in output.splitlines():
            symbol = line.split()[-1].split("@")[0]
            references += 1
            if symbol in FORBIDDEN:
                found.append(f"{name} refers to {symbol}")
    print("\n".join(found) or f"{len(objects)} objects, {references} references, none that prints or aborts")
    return 1 if found or references == 0 else 0


sys.exit(main())
