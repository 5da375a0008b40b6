"""Looks at the views for Visual Studio, whose debugger is not here: they are well-formed, show what gdb's printers show, and
use no field that the classes do not have.

    natvis_test.py NATVIS PRINTERS HEADER_DIR...
"""

import pathlib
import re
import sys
import xml.etree.ElementTree

NAMESPACE = "{http://schemas.microsoft.com/vstudio/debugger/natvis/2010}"


def main():
    natvis, printers, *folders = sys.argv[1:]
    headers = {}
    for path in (path for folder in folders for path in pathlib.Path(folder).rglob("*.h")):
        headers[path.stem] = headers.get(path.stem, "") + path.read_text()
    # What a class is declared in beside the header of its own name.
    shared = headers["ElementArray"] + headers["BasicObject"] + headers["Object"]
    failures = []
    shown = set()
    for view in xml.etree.ElementTree.parse(natvis).getroot().findall(f"{NAMESPACE}Type"):
        name = view.get("Name").split("<")[0].removeprefix("Tervane::")
        shown.add(name)
        own = "".join(text for path, text in headers.items() if path == name.split("::")[1]) + shared
        own += headers["Dimensions"]
        text = " ".join([e.text or "" for e in view.iter()] + [e.get("Condition", "") for e in view.iter()])
        for field in sorted(set(re.findall(r"\b_[a-zA-Z]+\b", text))):
            if not re.search(rf"\b{field}\b", own.replace(f"{field}(", "")):
                failures.append(f"{name} has no field {field}")
        if not any(e.tag == f"{NAMESPACE}DisplayString" for e in view):
            failures.append(f"{name} shows nothing")

    expected = set(re.findall(r'^    "((?:Math|System)::\w+)":', pathlib.Path(printers).read_text(), re.MULTILINE))
    expected.add("System::Expected")
    if len(expected) < 15 or shown != expected:
        failures.append(f"shown by one of both only: {sorted(shown ^ expected)}")
    print("\n".join(failures) or f"{len(shown)} types")
    return 1 if failures else 0


sys.exit(main())
