"""Runs scripts/bench_report.py on made-up results and looks at its ratios and plots.

    bench_report_test.py SCRIPT
"""

import json
import pathlib
import subprocess
import sys
import tempfile


def run(name, nanoseconds, unit="ns", kind="iteration", **counters):
    return {"run_name": name, "run_type": kind, "real_time": nanoseconds, "time_unit": unit, **counters}


def main():
    script = sys.argv[1]
    results = {
        # What was measured just before counts, not the load average, which holds what ran minutes ago.
        "context": {"num_cpus": 2, "date": "2020-02-29T12:00:00+00:00", "load_avg": [9.0, 9.0, 9.0], "busy": "0.25"},
        "benchmarks": [
            # The median of an odd number of samples is the one in the middle, whatever the others are.
            *(run("Add/inline/64", t) for t in (20.0, 1.0, 9000.0)),
            *(run("Add/plain/64", t) for t in (10.0, 10.0, 10.0)),
            run("Add/plain/64", 1e9, kind="aggregate"),
            run("Add/inline/4096/real_time", 0.5, unit="us"),
            run("Add/plain/4096/real_time", 1000.0),
            run("Sine/library", 3.0),
            run("Sine/std", 4.0),
            # The limit tells how many operations a call has; it may run on several threads.
            run("Gemm/library/4", 64.0),
            run("Gemm/limit/4/real_time/threads:2", 32.0, operations=128.0),
            run("Gemm/library/8", 512.0),
            run("Gemm/limit/8/real_time/threads:2", 256.0, operations=1024.0),
        ],
    }
    failures = []
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "made_up.json"
        path.write_text(json.dumps(results), encoding="utf-8")
        output = subprocess.run([sys.executable, script, path], check=True, capture_output=True, text=True).stdout
        lines = output.splitlines()
        for subject, length, ratio in (
            ("Add", "64", "inline/plain 2.000"),
            ("Add", "4096", "inline/plain 0.500"),
            ("Sine", None, "library/std 0.750"),
            ("Gemm", "8", "library/limit 2.000"),
        ):
            found = [
                line for line in lines
                if line.split()[0] == subject and (length is None or line.split()[1] == length) and ratio in line
            ]
            if len(found) != 1:
                failures.append(f"{subject} {length}: no single line says {ratio}")
        if "warning" in output:
            failures.append("a warning of a machine that was quiet")
        results["context"]["busy"] = "0.75"
        path.write_text(json.dumps(results), encoding="utf-8")
        busy = subprocess.run([sys.executable, script, path], check=True, capture_output=True, text=True).stdout
        if not busy.startswith("warning: 0.75 "):
            failures.append("no warning of a machine that was busy")
        plot = path.with_name("made_up-Add.png")
        if not plot.exists() or not plot.read_bytes().startswith(b"\x89PNG"):
            failures.append("no plot of the subject with two lengths")
        # Order, then the median, smallest and largest of each side: the library's 2 GFLOP/s, the limit's 4.
        drawn = path.with_name("made_up-Gemm.dat").read_text(encoding="utf-8").split("\n")[:2]
        if drawn != ["4 2 2 2 4 4 4", "8 2 2 2 4 4 4"]:
            failures.append(f"operations per second: {drawn}")
        if path.with_name("made_up-Sine.png").exists():
            failures.append("a plot of a subject without lengths")
    print("\n".join(failures + ([output] if failures else [])) or f"{len(lines)} lines as expected")
    return 1 if failures else 0


sys.exit(main())
