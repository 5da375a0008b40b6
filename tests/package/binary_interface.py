"""Compares the binary interface of the libraries with the recorded one: symbols, layouts, virtual slots, enumerators.

    binary_interface.py --cmake CMAKE --compiler COMPILER --source DIR --work DIR --record DIR [--update]

The comparison needs debug information, so both libraries are built once more: without optimisation and as one file,
which takes a quarter of a minute. Additions are compatible and pass. With --update the record is written anew, which
docs/binary-interface.md allows for a new major version.
"""

import argparse
import pathlib
import re
import subprocess
import sys

# What the records do not hold: places in files and on machines, and what only the library's own sources see.
PORTABLE = ["--no-corpus-path", "--no-comp-dir-path", "--no-show-locs", "--drop-private-types", "--type-id-style", "hash"]


def run(*command):
    result = subprocess.run([str(c) for c in command], capture_output=True, text=True)
    if result.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}\n{result.stdout}{result.stderr}")
    return result.stdout


def build(options):
    """The interfaces of both libraries, with debug information, as abidw describes them."""
    folder = options.work / "build"
    flags = f"-O0 -g -ffile-prefix-map={options.source}/= -ffile-prefix-map={folder}/="
    run(options.cmake, "-G", "Ninja", "-S", options.source, "-B", folder, "-D", f"CMAKE_CXX_COMPILER={options.compiler}",
        "-D", "CMAKE_BUILD_TYPE=Debug", "-D", f"CMAKE_CXX_FLAGS={flags}", "-D", "CMAKE_UNITY_BUILD=ON",
        "-D", "CMAKE_UNITY_BUILD_BATCH_SIZE=0", *(f"-DTVNMATH_BUILD_{w}=OFF" for w in ("TESTING", "BENCHMARKS", "EXAMPLES")))
    run(options.cmake, "--build", folder)
    described = {}
    for name in ("libTVNCore", "libTVNMath"):
        described[name] = options.work / f"{name}.abi"
        headers = [flag for folder in ("include", "support/include") for flag in ("--headers-dir", options.source / folder)]
        run("abidw", *PORTABLE, *headers, "--out-file", described[name], next((options.work / "build").rglob(f"{name}.so")))
    return described


def differences(recorded, described):
    result = subprocess.run(["abidiff", "--no-added-syms", recorded, described], capture_output=True, text=True)
    if result.returncode & 3:
        sys.exit(f"abidiff could not compare {recorded} and {described}:\n{result.stdout}{result.stderr}")
    return result.stdout if result.returncode else ""


def notices_a_changed_layout(options, described):
    """The comparison must see a field more in Vector2; otherwise it would pass whatever happens."""
    text = (options.record / "libTVNMath.abi").read_text()
    changed, count = re.subn(r"(<class-decl name='Vector2' size-in-bits=')(\d+)", lambda m: m[1] + str(int(m[2]) + 64), text)
    other = options.work / "changed.abi"
    other.write_text(changed)
    return count == 1 and "Vector2" in differences(other, described)


def main():
    parser = argparse.ArgumentParser()
    for name in ("cmake", "compiler", "source", "work", "record"):
        parser.add_argument(f"--{name}", required=True, type=pathlib.Path)
    parser.add_argument("--update", action="store_true")
    options = parser.parse_args()

    built = build(options)
    if options.update:
        for described in built.values():
            (options.record / described.name).write_text(described.read_text())
        return 0

    found = [differences(options.record / described.name, described) for described in built.values()]
    if any(found):
        print("".join(found))
        print("The binary interface is not that of version 1.0 any more; docs/binary-interface.md says what may change.")
        return 1
    if not notices_a_changed_layout(options, built["libTVNMath"]):
        print("the comparison does not see a changed layout of Vector2")
        return 1
    print("the binary interface is the recorded one, or adds to it")
    return 0


sys.exit(main())
