"""Runs gdb on a program that uses an installation, and compares what it shows of each object with what it should.

    printers_test.py GDB PROGRAM LIBRARY_DIR

gdb finds the printers by itself, beside the library, once that folder is allowed.
"""

import os
import subprocess
import sys
import tempfile

SEVENS = ", ".join(["7"] * 200)

# Expression, what gdb shows.
OBJECTS = [
    ("vector2", "column of length 3 = {1, 2.5, -3}"),
    ("empty2", "column of length 0"),
    ("long2", f"column of length 1000 = {{{SEVENS}...}}"),
    ("view2", "view of a row of length 2 = {1, 2.5}"),
    ("matrix2", "2 x 3, by columns = {{0, 10}, {1, 11}, {2, 12}}"),
    ("complex2", "complex column of length 2 = {1 + 2.5i, -3 + 4i}"),
    ("complexView2", "view of a complex column of length 2 = {1 + 2.5i, -3 + 4i}"),
    ("vector", "column of length 3 = {1, 2.5, -3}"),
    ("view", "view of a column of length 3 = {1, 2.5, -3}"),
    ("matrix", "2 x 2, by columns = {{1.5, 1.5}, {1.5, 1.5}}"),
    ("complex", "complex vector of length 2 = {1 - 2i, 0.5 + 0i}"),
    ("result", "no error = {solutions = column of length 2 = {1, 2.5}, residuals = column of length 1 = {-3}}"),
    ("movedFrom", "moved from"),
    ("taken", "column of length 3 = {1, 2.5, -3}"),
    ("good", "expected = {value = column of length 3 = {1, 2.5, -3}}"),
    ("bad", "error: math-la 3: dimensions mismatch"),
    ("done", "success"),
    ("failed", f"error: generic 34: {os.strerror(34)}"),
    ("code2", "math-la 9: matrix is singular"),
    ("noError", "no error"),
    ("code", "math_la 8: matrix is not square"),
    ("unknown", "unknown error"),
    ("described", "exception: out of luck"),
    ("text2", '"5 µV"'),
    ("text", '"old text"'),
    ("noText", '""'),
    ("dimensions", "2 x 3"),
    ("index", "row 4, column 5"),
    ("slice", "1:10:3"),
    # Elements, whether or not an operator[] was compiled.
    ("vector2[1]", "2.5"),
    ("vector2[2] * 2", "-6"),
    ("view2[1]", "2.5"),
    ("matrix2[2][1]", "12"),
    ("*matrix2[2]@2", "{2, 12}"),
    ("complex2[1]", "{_M_value = -3 + 4i}"),
    ("vector[1]", "2.5"),
    ("view[2]", "-3"),
    ("matrix[1][0]", "1.5"),
    ("complex[0]", "{_M_value = 1 + -2i}"),
]


def run(gdb, program, library_dir, commands):
    with tempfile.NamedTemporaryFile("w", suffix=".gdb") as script:
        script.write("set debuginfod enabled off\nset pagination off\nset width 0\nset confirm off\n" + commands)
        script.flush()
        # -nx leaves out the user's own settings; the folder is allowed as a user would allow it.
        result = subprocess.run(
            [gdb, "-nx", "-q", "-batch", "-iex", f"add-auto-load-safe-path {library_dir}", "-x", script.name, program],
            capture_output=True, text=True, encoding="utf-8", env={**os.environ, "LC_ALL": "C.UTF-8"}, timeout=120)
    return result.stdout, result.stderr


def main():
    gdb, program, library_dir = sys.argv[1:]
    failures = []

    shown = "".join(f"echo @{i}@\noutput {expression}\necho \\n\n" for i, (expression, _) in enumerate(OBJECTS))
    # Cut shorter, and after the program's memory was changed through the debugger.
    shown += "set print elements 2\necho @cut@\noutput vector2\necho \\n\n"
    shown += "set variable vector2[0] = 9\necho @changed@\noutput vector2\necho \\n\n"
    output, errors = run(gdb, program, library_dir, f"break stop\nrun\nup\n{shown}")
    expected = {str(i): text for i, (_, text) in enumerate(OBJECTS)}
    expected |= {"cut": "column of length 3 = {1, 2.5...}", "changed": "column of length 3 = {9, 2.5...}"}
    found = dict(line.split("@", 2)[1:] for line in output.splitlines() if line.startswith("@"))
    for key, text in expected.items():
        if found.get(key) != text:
            name = OBJECTS[int(key)][0] if key.isdigit() else key
            failures.append(f"{name}: {text} was expected, and gdb shows {found.get(key)}")

    # Every code of every category: what gdb reads equals what the library says.
    looks = "".join(f"break {place}\ncommands\nsilent\necho @\noutput code\necho \\n\ncontinue\nend\n"
                    for place in ("look", "lookAtLegacy"))
    output, more_errors = run(gdb, program, library_dir, f"{looks}run\n")
    lines = output.splitlines()
    read = [line[1:] for line in lines if line.startswith("@")]
    said = [line for line in lines if line.split(" ")[0] in ("math-la", "math-fft", "math-emi", "math", "generic", "math_la")]
    if len(said) != 6 * 14 or sorted(read) != sorted(said):
        failures.append(f"of {len(said)} codes gdb reads {len(read)}: {sorted(set(read) ^ set(said))[:4]}")

    if failures:
        print("\n".join(failures), output[-2000:], errors, more_errors, sep="\n")
        return 1
    print(f"{len(expected)} objects and {len(read)} codes")
    return 0


sys.exit(main())
