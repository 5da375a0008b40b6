#!/usr/bin/env python3
"""Builds the manual, which fails at a warning, and looks whether everything is in it.

  manual_test.py DOXYGEN PROJECT VERSION FOLDER

Each public header has a page, and each page of docs/ and docs/manual/ is linked from the manual's first page or its index by
topic. An empty folder FOLDER receives the manual.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys


def main():
    doxygen, project, version, folder = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3], pathlib.Path(sys.argv[4])
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    environment = dict(os.environ, TVNMATH_VERSION=version, TVNMATH_DOCS_OUTPUT=str(folder))
    built = subprocess.run([doxygen, "docs/Doxyfile"], cwd=project, env=environment, stdout=subprocess.PIPE,
                           stderr=subprocess.STDOUT, text=True)
    faults = built.stdout.splitlines() if built.returncode else []

    html = folder / "html"
    titles = {path.name: path.read_text(errors="replace") for path in html.glob("*.html")}
    files = titles.get("files.html", "")
    for header in [*(project / "include/Math").glob("*.h"), *(project / "support/include/System").glob("*.h")]:
        if f">{header.name}<" not in files:
            faults.append(f"{header.name} has no page")
    if version not in titles.get("index.html", ""):
        faults.append(f"the first page does not say {version}")

    index = (project / "docs/manual/index.md").read_text() + (project / "docs/manual/topics.md").read_text()
    pages = [*(project / "docs").glob("*.md"), *(project / "docs/manual").glob("*.md")]
    for page in pages:
        if page.name != "index.md" and not re.search(rf"\((?:\.\./)?{re.escape(page.name)}\)", index):
            faults.append(f"{page.relative_to(project)} is not linked from the first page or the topics")
    if len(pages) < 10:
        faults.append(f"only {len(pages)} pages were found")
    if not list(html.glob("search/search*.js")):
        faults.append("there is no search")
    print("\n".join(faults))
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
