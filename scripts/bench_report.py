"""Turns the results of benchmark programs into ratios and plots.

    bench_report.py RESULTS.json [MORE.json…]

Prints, for each subject and length, the median time of every side and how many times longer each of the library's sides
takes than each reference; draws one plot for each subject, beside the first file, with the smallest, the middle and the
largest time of all rounds and the experiment's conditions. Matrix operations are drawn over the order of the matrix, in
operations per second.
"""

import collections
import json
import pathlib
import re
import statistics
import subprocess
import sys

LIBRARY_SIDES = ["inline", "default", "library", "legacy"]
# More than this on each core, and the machine was not there for the measurement alone.
BUSY = 0.5


def read_times(paths):
    """{subject: {length: {side: sorted nanoseconds}}}, {subject: {length: floating-point operations of one call}} where
    the limit's results tell, and the first file's context"""
    times = collections.defaultdict(lambda: collections.defaultdict(lambda: collections.defaultdict(list)))
    operations = collections.defaultdict(dict)
    to_nanoseconds = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
    context = None
    for path in paths:
        results = json.loads(path.read_text(encoding="utf-8"))
        context = context or results["context"]
        for run in results["benchmarks"]:
            if run.get("run_type", "iteration") != "iteration" or run.get("error_occurred"):
                continue
            words = [word for word in run["run_name"].split("/") if word != "real_time" and not word.startswith("threads:")]
            length = int(words.pop()) if words[-1].isdigit() else 0
            subject, side = "/".join([words[0], *words[2:]]), words[1].lower()
            if "operations" in run:
                operations[subject][length] = run["operations"]
            times[subject][length][side].append(run["real_time"] * to_nanoseconds[run["time_unit"]])
    for by_length in times.values():
        for by_side in by_length.values():
            for samples in by_side.values():
                samples.sort()
    return times, operations, context


def report(times):
    for subject, by_length in times.items():
        for length, samples in sorted(by_length.items()):
            by_side = {side: statistics.median(values) for side, values in samples.items()}
            ours = [side for side in LIBRARY_SIDES if side in by_side]
            references = [side for side in by_side if side not in LIBRARY_SIDES]
            columns = [f"{side} {by_side[side]:.4g} ns" for side in references + ours]
            ratios = [f"{a}/{b} {by_side[a] / by_side[b]:.3f}" for a in ours for b in references]
            if {"inline", "default"} <= by_side.keys():
                ratios.append(f"default/inline {by_side['default'] / by_side['inline']:.3f}")
            print(f"{subject:24} {length or '':>9}  {', '.join(columns)}  |  {', '.join(ratios)}")


def output_of(*command):
    run = subprocess.run(command, capture_output=True, text=True, check=False)
    return run.stdout.strip() if run.returncode == 0 else ""


def load_of(context):
    """Other programs for each core, from the second before the benchmarks where that was measured."""
    return float(context["busy"]) if "busy" in context else context.get("load_avg", [0.0])[0] / context["num_cpus"]


def conditions(context, rounds):
    """The caption's lines."""
    model = next(
        (line.split(":")[1].strip() for line in open("/proc/cpuinfo", encoding="utf-8") if "model name" in line), "CPU"
    )
    packages = ("libmkl-dev", "libeigen3-dev", "libtbb-dev")
    versions = [f"{name} {output_of('dpkg-query', '-W', '-f=${Version}', name)}" for name in packages]
    load = load_of(context)
    lines = [
        f"{context['num_cpus']} cores of {model}, {context['date'][:10]}, smallest, median and largest of {rounds} rounds",
        f"commit {context.get('commit', 'unknown')}, "
        f"{output_of('c++', '--version').splitlines()[0]} -O3 (references -O3 -march=native)",
        ", ".join(versions),
        f"load when it began: {load:.2f} a core",
    ]
    if load > BUSY:
        lines[-1] += " - THE MACHINE WAS BUSY, ratios only"
    return lines


def file_name(stem, subject):
    words = {"+": " plus ", "*": " times ", "-": " minus ", "=": " assign ", "/": " "}
    spelled = "".join(words.get(character, character) for character in subject)
    return f"{stem}-{'-'.join(re.findall('[A-Za-z0-9_]+', spelled))}"


def draw(times, operations, context, folder, stem):
    for subject, by_length in times.items():
        lengths = sorted(length for length in by_length if length > 0)
        if len(lengths) < 2:
            continue
        # A time becomes what is drawn: nanoseconds for each element, or 10^9 operations a second.
        counted = operations.get(subject)
        shown = (lambda n, t: counted[n] / t) if counted else (lambda n, t: t / n)
        sides = sorted({side for by_side in by_length.values() for side in by_side})
        data = folder / f"{file_name(stem, subject)}.dat"
        rows = []
        for length in lengths:
            row = [str(length)]
            for side in sides:
                samples = by_length[length].get(side)
                values = sorted(shown(length, t) for t in samples) if samples else [float("nan")]
                row += [f"{value:.6g}" for value in (statistics.median(values), values[0], values[-1])]
            rows.append(" ".join(row))
        data.write_text("\n".join(rows) + "\n", encoding="utf-8")
        curves = []
        for i, side in enumerate(sides):
            middle = 2 + 3 * i
            style = "dashtype 2 linecolor 'black'" if side == "limit" else f"linecolor {i + 1}"
            if side in LIBRARY_SIDES:
                style += " linewidth 3"
            curves.append(f"'{data}' using 1:{middle} with lines {style} title '{side}'")
            curves.append(f"'{data}' using 1:{middle}:{middle + 1}:{middle + 2} with yerrorbars pointtype 7 {style} notitle")
        rounds = max(len(samples) for by_side in by_length.values() for samples in by_side.values())
        caption = "\\n".join([subject, *conditions(context, rounds)]).replace('"', "")
        commands = f"""
            set terminal pngcairo size 1000,640 font ',9'
            set output '{data.with_suffix(".png")}'
            set title "{caption}" noenhanced
            set logscale xy
            set xlabel '{"order of the matrix" if counted else "elements"}'
            set ylabel '{"GFLOP/s" if counted else "nanoseconds per element"}'
            set key outside right noenhanced
            set grid
            plot {", ".join(curves)}
        """
        subprocess.run(["gnuplot"], input=commands, text=True, check=True)


def main():
    paths = [pathlib.Path(argument) for argument in sys.argv[1:]]
    times, operations, context = read_times(paths)
    if load_of(context) > BUSY:
        print(f"warning: {load_of(context):.2f} other programs a core when this began; only ratios mean anything")
    report(times)
    draw(times, operations, context, paths[0].parent, paths[0].stem)


main()
