"""Counts the instructions of short operations and compares them with a committed list.

    instruction_counts.py PROGRAM LIST [--update]

Time on a busy machine says little about operations of some nanoseconds; the number of their instructions does not change.
valgrind shows every program the same processor, one with AVX2, wherever the machine has that much: so the counts are the
same on all of them. An operation may take 10 % more than the list says. With --update the list is written anew.

Exit status 77: nothing can be counted here, and why.
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOM = 1.10
SKIPPED = 77


def reason_to_skip():
    if shutil.which("valgrind") is None:
        return "valgrind is not installed"
    if " avx2 " not in pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8"):
        return "the machine has no AVX2, so valgrind shows the program another processor"
    return None


def count(program):
    """{operation: instructions of one call}"""
    with tempfile.TemporaryDirectory() as folder:
        run = subprocess.run(
            ["valgrind", "--tool=callgrind", f"--callgrind-out-file={folder}/out", program],
            capture_output=True, text=True, check=False, env={"OMP_NUM_THREADS": "1", "PATH": "/usr/bin:/bin"},
        )
        if run.returncode != 0:
            sys.exit(f"{program} failed under valgrind:\n{run.stderr}")
        calls = int(run.stdout)
        counts = {}
        for dump in pathlib.Path(folder).iterdir():
            text = dump.read_text(encoding="utf-8")
            name = re.search(r"^desc: Trigger: Client Request: (.*)$", text, re.MULTILINE)
            total = re.search(r"^totals: (\d+)$", text, re.MULTILINE)
            if name and total:
                counts[name[1]] = int(total[1]) / calls
        return counts


def main():
    program, path = sys.argv[1], pathlib.Path(sys.argv[2])
    reason = reason_to_skip()
    if reason:
        print(f"skipped: {reason}")
        return SKIPPED
    counts = count(program)
    if "--update" in sys.argv:
        path.write_text("".join(f"{n:7.0f}  {name}\n" for name, n in sorted(counts.items())), encoding="utf-8")
        return 0
    listed = {name: float(n) for n, name in (line.split(maxsplit=1) for line in path.read_text(encoding="utf-8").splitlines())}
    failures = [f"{name}: listed and not counted" for name in listed.keys() - counts.keys()]
    failures += [f"{name}: counted and not listed" for name in counts.keys() - listed.keys()]
    for name in sorted(listed.keys() & counts.keys()):
        print(f"{counts[name]:9.1f} instructions, {listed[name]:7.0f} listed: {name}")
        if counts[name] > ROOM * listed[name]:
            failures.append(f"{name}: {counts[name]:.1f} instructions, more than 10 % above {listed[name]:.0f}")
    print("\n".join(failures) or "no operation has become longer")
    return 1 if failures or not listed else 0


sys.exit(main())
