#!/usr/bin/env python3
"""Holds docs/compatibility.md to the code.

  register_test.py complete PROJECT                          every test exists, every number is cited, every citation is listed
  register_test.py program PROJECT FILE                      writes a program that runs every entry's lines

An entry is a heading "### C14: ..." with a block of C++ and a line "Test: `Suite.Name`, ...". A block marked "illustration"
shows what no program can see and is not run.
"""

import pathlib
import re
import sys

ENTRY = re.compile(r"^### C(\d+): (.+)$", re.MULTILINE)
CODE = re.compile(r"^```cpp( illustration)?\n(.*?)^```$", re.MULTILINE | re.DOTALL)
TEST = re.compile(r"`([\w.]+)`")
CITATION = re.compile(r"[Cc]ompatibility C\d+(?:(?:, | and )C\d+)*")


def entries(project):
    """(number, title, text) of each entry, in order."""
    register = (project / "docs" / "compatibility.md").read_text()
    headings = list(ENTRY.finditer(register))
    ends = [heading.start() for heading in headings[1:]] + [len(register)]
    return [(int(heading[1]), heading[2], register[heading.end():end]) for heading, end in zip(headings, ends)]


def sources(project, *folders):
    for folder in folders:
        for pattern in ("*.h", "*.cpp"):
            yield from sorted((project / folder).rglob(pattern))


def known_tests(project):
    names = set()
    for source in sources(project, "tests"):
        for suite, name in re.findall(r"\b(?:TYPED_)?TEST(?:_[FP])?\(\s*(\w+),\s*(\w+)\)", source.read_text()):
            names.add(f"{suite}.{name}")
    for line in re.findall(r"foreach\(case ([^)]*)\)", (project / "tests/compile/CMakeLists.txt").read_text()):
        for case in line.split():
            names |= {f"compile.{case}.RightCompiles", f"compile.{case}.WrongDoesNot"}
    return names


def cited_numbers(project):
    """Each cited number with the places that cite it."""
    places = {}
    for source in sources(project, "include", "src", "support"):
        # A citation may be broken over two lines of a comment.
        text = re.sub(r"\n\s*(?:///?|\*) ?", " ", source.read_text())
        for citation in CITATION.findall(text):
            for number in re.findall(r"C(\d+)", citation):
                places.setdefault(int(number), set()).add(str(source.relative_to(project)))
    return places


def complete(project):
    faults = []
    listed = entries(project)
    numbers = [number for number, _, _ in listed]
    if len(listed) < 50:
        faults.append(f"only {len(listed)} entries were found")
    faults += [f"C{number} is given twice" for number in sorted(set(numbers)) if numbers.count(number) > 1]
    tests = known_tests(project)
    for number, title, text in listed:
        if not CODE.search(text):
            faults.append(f"C{number} shows no code")
        names = [name for line in re.findall(r"^Test: (.+?)(?:\n\n|\Z)", text, re.MULTILINE | re.DOTALL) for name in TEST.findall(line)]
        if not names:
            faults.append(f"C{number} names no test")
        faults += [f"C{number} names {name}, which is no test" for name in names if name not in tests]
    cited = cited_numbers(project)
    faults += [f"C{number} ({title}) is cited nowhere" for number, title, _ in listed if number not in cited]
    faults += [f"C{number} is cited in {', '.join(sorted(cited[number]))} and not listed"
               for number in sorted(cited) if number not in numbers]
    for source in sources(project, "include", "src", "support"):
        if re.search(r"callers\s+(?:///?\s+)?rely", source.read_text(), re.IGNORECASE):
            faults.append(f"{source.relative_to(project)} says that callers rely on something; cite its number instead")
    return faults


def program(project, file):
    lines = ["// Made from docs/compatibility.md.", "#undef NDEBUG"]
    lines += [f"#include <{header}>" for header in (
        "Math/Math.h", "System/System.h", "cassert", "cerrno", "cmath", "cstdint", "limits", "new", "stdexcept", "string",
        "type_traits", "utility")]
    lines += ["using namespace Tervane::Math;", "using namespace Tervane::System;"]
    run = []
    for number, title, text in entries(project):
        found = CODE.search(text)
        if found and not found[1]:
            lines += [f"// {title}", f"static void C{number}() {{", found[2].rstrip(), "}"]
            run.append(number)
    lines += ["int main() {"] + [f"    C{number}();" for number in run] + ["}", ""]
    pathlib.Path(file).write_text("\n".join(lines))
    return [] if len(run) >= 50 else [f"only {len(run)} entries have lines that can be run"]


def main():
    faults = {"complete": complete, "program": program}[sys.argv[1]](pathlib.Path(sys.argv[2]), *sys.argv[3:])
    print("\n".join(faults))
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
