#!/usr/bin/env python3
"""Writes a program that holds every @code block of the public headers.

  header_examples.py PROJECT FILE

A block is the body of a function that may return an error, unless it defines functions or classes itself. Nothing is
declared for it but the library's headers and the standard ones.
"""

import pathlib
import re
import sys

BLOCK = re.compile(r"^ *///? @code\n(.*?)^ *///? @endcode", re.MULTILINE | re.DOTALL)
DEFINITION = re.compile(r"^(?:struct|class|template|[\w:<>, 0-9]+ \w+\(.*\)(?: const)?) *.*\{$", re.MULTILINE)
HEADERS = ("Math/Math.h", "System/System.h", "algorithm", "complex", "iostream", "limits", "string", "utility")


def main():
    project, file = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    lines = ["// Made from the public headers."] + [f"#include <{header}>" for header in HEADERS]
    count = 0
    for folder in ("include/Math", "support/include/System"):
        for header in sorted((project / folder).rglob("*.h")):
            for found in BLOCK.finditer(header.read_text()):
                count += 1
                code = re.sub(r"^ *///? ?", "", found[1], flags=re.MULTILINE).rstrip()
                lines.append(f"namespace example{count} {{ // {header.relative_to(project)}")
                if DEFINITION.search(code) and "\nif (" not in code and "\ntry {" not in code:
                    lines += [code]
                else:
                    lines += ["Tervane::System::Expected<void, Tervane::System::ErrorCode2> example() {", code, "return {};", "}"]
                lines.append("}")
    if count < 35:
        sys.exit(f"only {count} examples were found")
    file.write_text("\n".join(lines + ["int main() {}", ""]))


if __name__ == "__main__":
    main()
