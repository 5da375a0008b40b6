"""Turns the results of a benchmark program into ratios and plots.

    bench_report.py RESULTS.json

Prints, for each subject and length, the median time of every side and how many times longer each of the library's sides
takes than each reference; draws one plot for each subject, beside the results, with the experiment's conditions.
"""

import collections
import json
import pathlib
import statistics
import subprocess
import sys

LIBRARY_SIDES = ["inline", "default", "library", "legacy"]


def read_times(results):
    """{subject: {length: {side: median nanoseconds}}}"""
    samples = collections.defaultdict(list)
    to_nanoseconds = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
    for run in results["benchmarks"]:
        if run.get("run_type", "iteration") != "iteration" or run.get("error_occurred"):
            continue
        words = [word for word in run["run_name"].split("/") if word != "real_time"]
        length = int(words.pop()) if words[-1].isdigit() else 0
        subject, side = "/".join([words[0], *words[2:]]), words[1].lower()
        samples[subject, length, side].append(run["real_time"] * to_nanoseconds[run["time_unit"]])
    times = collections.defaultdict(lambda: collections.defaultdict(dict))
    for (subject, length, side), values in samples.items():
        times[subject][length][side] = statistics.median(values)
    return times


def report(times):
    for subject, by_length in times.items():
        for length, by_side in sorted(by_length.items()):
            ours = [side for side in LIBRARY_SIDES if side in by_side]
            references = [side for side in by_side if side not in LIBRARY_SIDES]
            columns = [f"{side} {by_side[side]:.4g} ns" for side in references + ours]
            ratios = [f"{a}/{b} {by_side[a] / by_side[b]:.3f}" for a in ours for b in references]
            if {"inline", "default"} <= by_side.keys():
                ratios.append(f"default/inline {by_side['default'] / by_side['inline']:.3f}")
            print(f"{subject:24} {length or '':>9}  {', '.join(columns)}  |  {', '.join(ratios)}")


def conditions(context):
    compiler = subprocess.run(["c++", "--version"], capture_output=True, text=True, check=False).stdout.split("\n")[0]
    model = next(
        (line.split(":")[1].strip() for line in open("/proc/cpuinfo", encoding="utf-8") if "model name" in line), "CPU"
    )
    return f"{context['num_cpus']} cores of {model}, {compiler}, {context['date'][:10]}, medians of 5"


def draw(times, context, folder, stem):
    for subject, by_length in times.items():
        lengths = sorted(length for length in by_length if length > 0)
        if len(lengths) < 2:
            continue
        sides = sorted({side for by_side in by_length.values() for side in by_side})
        data = folder / f"{stem}-{subject.replace('/', '-')}.dat"
        rows = [
            " ".join([str(length)] + [str(by_length[length].get(side, "NaN")) for side in sides]) for length in lengths
        ]
        data.write_text("\n".join(rows) + "\n", encoding="utf-8")
        curves = ", ".join(
            f"'{data}' using 1:(${column}/$1) with linespoints title '{side}'" for column, side in enumerate(sides, 2)
        )
        commands = f"""
            set terminal pngcairo size 900,600
            set output '{data.with_suffix(".png")}'
            set title "{subject}\\n{{/*0.7 {conditions(context)}}}" noenhanced
            set title enhanced
            set logscale xy
            set xlabel 'elements'
            set ylabel 'nanoseconds per element'
            set key outside right
            set grid
            plot {curves}
        """
        subprocess.run(["gnuplot"], input=commands, text=True, check=True)


def main():
    path = pathlib.Path(sys.argv[1])
    results = json.loads(path.read_text(encoding="utf-8"))
    times = read_times(results)
    report(times)
    draw(times, results["context"], path.parent, path.stem)


main()
