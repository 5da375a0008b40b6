#!/usr/bin/env python3
"""Writes a program that holds every @code block of the public headers, and runs every block of C++ of the manual's pages.

  header_examples.py PROJECT FILE

A block is the body of a function that may return an error, unless it defines functions or classes itself. Nothing is
declared for it but the library's headers and the standard ones. Those of the pages say by assert() what happens.
"""

import pathlib
import re
import sys

BLOCK = re.compile(r"^ *///? @code\n(.*?)^ *///? @endcode", re.MULTILINE | re.DOTALL)
DEFINITION = re.compile(r"^(?:struct|class|template|[\w:<>, 0-9]+ \w+\(.*\)(?: const)?) *.*\{$", re.MULTILINE)
PAGE_BLOCK = re.compile(r"^```cpp\n(.*?)^```$", re.MULTILINE | re.DOTALL)
HEADERS = ("Math/Math.h", "System/System.h", "algorithm", "cassert", "complex", "iostream", "limits", "stdexcept", "string",
           "utility")
FUNCTION = "Tervane::System::Expected<void, Tervane::System::ErrorCode2> example() {"


def main():
    project, file = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    lines = ["// Made from the public headers and the manual's pages.", "#undef NDEBUG"] + [f"#include <{header}>" for header in HEADERS]
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
                    lines += [FUNCTION, code, "return {};", "}"]
                lines.append("}")
    if count < 35:
        sys.exit(f"only {count} examples were found")
    run = []
    for page in sorted((project / "docs/manual").glob("*.md")):
        for found in PAGE_BLOCK.finditer(page.read_text()):
            run.append(f"page{len(run) + 1}")
            lines += [f"namespace {run[-1]} {{ // {page.name}", FUNCTION, found[1].rstrip(), "return {};", "}", "}"]
    if len(run) < 5:
        sys.exit(f"only {len(run)} blocks were found in the pages")
    lines += ["int main() {"] + [f"    if (!{name}::example()) return 1;" for name in run] + ["}", ""]
    file.write_text("\n".join(lines))


if __name__ == "__main__":
    main()
