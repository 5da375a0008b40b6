"""Times NumPy's arithmetic on whole arrays, for the plots of the containers' benchmarks.

    bench_numpy.py RESULTS.json

Writes results as the benchmark programs do. Short arrays are left out: there the interpreter is what one would measure.
"""

import json
import os
import pathlib
import sys
import time

import numpy

ROUNDS = 9
SUBJECTS = {"a+b": lambda a, b: a + b, "a*s": lambda a, b: a * 1.0001, "-a": lambda a, b: -a, "a+b+c": lambda a, b: a + b + a}


def main():
    runs = []
    for n in (4_096, 16_384, 65_536, 131_072, 1_000_000, 4_194_304):
        a, b = numpy.full(n, 1.5), numpy.full(n, 2.5)
        calls = max(3, 10_000_000 // n // 4)
        for subject, operation in SUBJECTS.items():
            operation(a, b)
            for _ in range(ROUNDS):
                begin = time.perf_counter_ns()
                for _ in range(calls):
                    operation(a, b)
                elapsed = (time.perf_counter_ns() - begin) / calls
                runs.append({"run_name": f"{subject}/numpy/{n}", "run_type": "iteration", "real_time": elapsed, "time_unit": "ns"})
    context = {"num_cpus": os.cpu_count(), "date": time.strftime("%Y-%m-%dT%H:%M:%S"), "load_avg": list(os.getloadavg())}
    pathlib.Path(sys.argv[1]).write_text(json.dumps({"context": context, "benchmarks": runs}), encoding="utf-8")


main()
