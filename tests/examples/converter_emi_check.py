#!/usr/bin/env python3
"""Checks the example converter_emi against the same calculation in NumPy and SciPy.

Everything is computed anew from the input files: the record is resampled, transformed and compared with the limit,
the filter is solved from the branches that the netlist lists, and the capacitor is fitted by another method. Where
both sides only round differently, levels must agree within 1e-8 dB and fits within 1e-7; the netlist's own
component values bound the fits, and the simulator's own receiver voltage bounds the filtered level.

Exit code 77 where NumPy or SciPy is missing, so that the test counts as skipped.
"""

import argparse
import csv
import os
import re
import shutil
import subprocess
import sys
import tempfile

try:
    import numpy as np
    import scipy.linalg
    import scipy.optimize
    import scipy.signal
except ImportError as missing:
    print(f"skipped: {missing}")
    sys.exit(77)

LEVEL_TOLERANCE = 1e-8  # dB, where both sides do the same arithmetic in another order
SWITCHING_FREQUENCY = 400e3
FIT_HARMONICS = 5
DC_CAPACITANCE = 22e-6
RECEIVER_RESISTANCE = 50.0
# Below this level a bin is the transform's rounding noise, which no two implementations share.
NOISE_FLOOR = 0.0  # dBuV

failures = []


def check(what, deviation, tolerance):
    """Notes whether the largest deviation keeps to its tolerance; a NaN does not."""
    largest = float(np.max(np.abs(deviation)))
    good = largest <= tolerance
    print(f"{'ok  ' if good else 'FAIL'} {what}: {largest:.3g} (tolerance {tolerance:g})")
    if not good:
        failures.append(what)


def read_table(path):
    """The columns of a CSV file as a dictionary of arrays."""
    with open(path, newline="") as file:
        rows = list(csv.reader(line for line in file if not line.startswith("#")))
    return {name: np.array([float(row[i]) for row in rows[1:]]) for i, name in enumerate(rows[0])}


def read_summary(path):
    with open(path, newline="") as file:
        return {row["quantity"]: float(row["value"]) for row in csv.DictReader(file)}


def run(program, *arguments):
    """Runs the example without plots in a new folder and returns its tables."""
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([program, *arguments, "--no-plots", "--output", folder], check=True, stdout=subprocess.DEVNULL)
        tables = {
            name[:-4]: read_summary(os.path.join(folder, name)) if name == "summary.csv"
            else read_table(os.path.join(folder, name))
            for name in os.listdir(folder)
        }
    return tables


def spectrum(samples, window):
    """Complex peak amplitudes at the bins, the window's coherent gain taken out."""
    return np.fft.rfft((samples - samples.mean()) * window) * 2.0 / window.sum()


def decibel_microvolts(amplitude):
    return 20.0 * np.log10(np.abs(amplitude) / np.sqrt(2.0) / 1e-6)


def limit_line(frequency):
    """The built-in limit from 150 kHz on, written as the usual piecewise rule."""
    sloped = 56.0 - 10.0 * np.log10(frequency / 150e3) / np.log10(500e3 / 150e3)
    return np.where(frequency < 500e3, sloped, np.where(frequency <= 5e6, 46.0, 50.0))


def netlist_filter(path):
    """The passive branches between supply, line, receiver and switching cell, as the netlist lists them."""
    factors = {"p": 1e-12, "n": 1e-9, "u": 1e-6, "m": 1e-3, "": 1.0}
    parts = []
    with open(path) as file:
        for text in file:
            found = re.match(r"([RLC])(\w*)\s+(\w+)\s+(\w+)\s+([\d.]+)([pnum]?)\b", text)
            if found:
                kind, _, start, end, number, unit = found.groups()
                parts.append((kind, start, end, float(number) * factors[unit]))
    # What hangs together from the switching cell's input without passing the switch.
    reached = {"cell"}
    while True:
        grown = reached | {node for _, a, b, _ in parts if {a, b} & (reached - {"0"}) for node in (a, b)}
        if grown == reached:
            break
        reached = grown
    assert "receiver" in reached and "sw" not in reached
    return [part for part in parts if part[1] in reached and part[2] in reached]


def insertion_loss(parts, frequency):
    """Loss in dB by complex nodal analysis with every node of the netlist; the supply is a short circuit."""
    nodes = sorted({node for _, a, b, _ in parts for node in (a, b)} - {"0", "supply"})
    index = {node: i for i, node in enumerate(nodes)}
    loss = np.empty_like(frequency)
    source = np.zeros(len(nodes), complex)
    source[index["cell"]] = 1.0
    for i, omega in enumerate(2.0 * np.pi * frequency):
        matrix = np.zeros((len(nodes), len(nodes)), complex)
        for kind, a, b, value in parts:
            admittance = {"R": 1.0 / value, "L": 1.0 / (1j * omega * value), "C": 1j * omega * value}[kind]
            for node, other in ((a, b), (b, a)):
                if node in index:
                    matrix[index[node], index[node]] += admittance
                    if other in index:
                        matrix[index[node], index[other]] -= admittance
        voltage = scipy.linalg.solve(matrix, source)[index["receiver"]]
        loss[i] = 20.0 * np.log10(RECEIVER_RESISTANCE / abs(voltage))
    return loss


def fit_capacitor(frequency, impedance, capacitance=None):
    """ESR, ESL and capacitance by a nonlinear least-squares search over milliohms, nanohenries and microfarads."""
    omega = 2.0 * np.pi * frequency

    def deviation(parameters):
        resistance, inductance = parameters[0] * 1e-3, parameters[1] * 1e-9
        farads = capacitance if capacitance is not None else parameters[2] * 1e-6
        model = resistance + 1j * (omega * inductance - 1.0 / (omega * farads))
        return np.concatenate([(model - impedance).real, (model - impedance).imag]) * 1e3

    start = [1.0, 1.0] + ([] if capacitance is not None else [10.0])
    result = scipy.optimize.least_squares(deviation, start, method="lm", xtol=1e-15, ftol=1e-15, gtol=1e-15)
    farads = capacitance if capacitance is not None else result.x[2] * 1e-6
    return result.x[0] * 1e-3, result.x[1] * 1e-9, farads


def check_simulation(program, data):
    record = read_table(os.path.join(data, "buck_converter.csv"))
    time = record["time_s"]
    parts = netlist_filter(os.path.join(data, "buck_converter.cir"))

    for window_name in ("hann", "hamming", "blackman", "none"):
        results = run(program, os.path.join(data, "buck_converter.csv"), "--window", window_name, "--capacitor",
                      "output_voltage_V", "capacitor_current_A")
        summary, bins, harmonics = results["summary"], results["spectrum"], results["harmonics"]
        count, periods = int(summary["samples"]), int(summary["periods"])
        check(f"{window_name}: periods", periods - np.floor((time[-1] - time[0]) * SWITCHING_FREQUENCY), 0)

        grid = time[0] + np.arange(count) * (periods / SWITCHING_FREQUENCY / count)
        if window_name == "none":
            window = np.ones(count)
        else:
            window = scipy.signal.get_window(window_name, count, fftbins=True)

        def resampled(column):
            return np.interp(grid, time, record[column])

        waveform = resampled("input_current_A")
        check(f"{window_name}: resampled waveform / A", results["waveform"]["signal_A"] - waveform, 1e-9)
        check(f"{window_name}: rebuilt waveform / A", results["waveform"]["rebuilt_A"] - waveform, 1e-9)
        check(f"{window_name}: round trip as reported / A", summary["round_trip_error"], 1e-12)

        amplitude = spectrum(waveform * RECEIVER_RESISTANCE, window)
        frequency = np.arange(len(amplitude)) * SWITCHING_FREQUENCY / periods
        band = (frequency >= 150e3 * (1 - 1e-9)) & (frequency <= 30e6 * (1 + 1e-9))
        level = decibel_microvolts(amplitude[band])
        check(f"{window_name}: frequencies / Hz", bins["frequency_Hz"] - frequency[band], 1e-6)
        audible = level > NOISE_FLOOR
        assert audible.sum() >= 75
        check(f"{window_name}: {audible.sum()} bins above the noise / dB",
              (bins["before_dBuV"] - level)[audible], LEVEL_TOLERANCE)

        order = np.arange(1, 76)
        check(f"{window_name}: orders of the harmonics", harmonics["order"] - order, 0)
        at_harmonic = amplitude[order * periods]
        check(f"{window_name}: amplitudes of the harmonics", harmonics["amplitude_V"] / np.abs(at_harmonic) - 1, 1e-10)
        loss = insertion_loss(parts, order * SWITCHING_FREQUENCY)
        check(f"{window_name}: insertion loss at the harmonics / dB",
              harmonics["insertion_loss_dB"] - loss, LEVEL_TOLERANCE)
        after = decibel_microvolts(at_harmonic) - loss
        check(f"{window_name}: filtered harmonics / dB", harmonics["after_dBuV"] - after, LEVEL_TOLERANCE)
        margin = limit_line(order * SWITCHING_FREQUENCY) - after
        check(f"{window_name}: margins / dB", harmonics["margin_dB"] - margin, LEVEL_TOLERANCE)
        check(f"{window_name}: least margin / dB", summary["least_margin_after"] - margin.min(), LEVEL_TOLERANCE)

        fit_bins = np.arange(1, FIT_HARMONICS + 1) * periods
        impedance = (spectrum(resampled("output_voltage_V"), window)[fit_bins]
                     / spectrum(resampled("capacitor_current_A"), window)[fit_bins])
        measured = results["capacitor"]["resistance_ohm"] + 1j * results["capacitor"]["reactance_ohm"]
        check(f"{window_name}: capacitor's impedance, relative", measured / impedance - 1, 1e-10)
        fit_frequency = np.arange(1, FIT_HARMONICS + 1) * SWITCHING_FREQUENCY
        for name, held in (("free", None), ("constrained", DC_CAPACITANCE)):
            expected = fit_capacitor(fit_frequency, impedance, held)
            found = [summary[f"{name}_{quantity}"] for quantity in ("esr", "esl", "capacitance")]
            check(f"{window_name}: {name} fit, relative", np.array(found) / expected - 1, 1e-7)
        check(f"{window_name}: held capacitance, relative", summary["constrained_capacitance"] / DC_CAPACITANCE - 1,
              1e-14)

    # What the netlist itself says, within what adaptive steps and straight lines between them leave of it.
    check("ESR against the netlist, relative", summary["constrained_esr"] / 6e-3 - 1, 0.05)
    check("ESL against the netlist, relative", summary["constrained_esl"] / 1.2e-9 - 1, 0.05)
    check("capacitance against the netlist, relative", summary["free_capacitance"] / 22e-6 - 1, 0.05)
    receiver = decibel_microvolts(spectrum(np.interp(grid, time, record["receiver_voltage_V"]), window)[periods])
    check("filtered fundamental against the simulated receiver / dB", harmonics["after_dBuV"][0] - receiver, 0.5)

    # Every bin of the band, not only the harmonics.
    check("insertion loss at every bin / dB",
          bins["insertion_loss_dB"] - insertion_loss(parts, bins["frequency_Hz"]), LEVEL_TOLERANCE)
    inside = np.abs(bins["frequency_Hz"] - 5e6) > 1.0  # at the step itself the level before it holds
    check("limit line at every bin / dB",
          (bins["limit_dBuV"] - limit_line(bins["frequency_Hz"]))[inside], LEVEL_TOLERANCE)


def check_new_simulation(program, data):
    """The simulator, run again, gives a record with the same results as the stored one."""
    columns = ("--capacitor", "output_voltage_V", "capacitor_current_A")
    stored = run(program, os.path.join(data, "buck_converter.csv"), *columns)
    with tempfile.TemporaryDirectory() as folder:
        record = os.path.join(folder, "simulation", "buck_converter.csv")
        subprocess.run([os.path.join(data, "simulate"), record], check=True)
        anew = run(program, record, *columns)
    # Another build of the simulator may choose other steps; on the strong harmonics they leave little trace.
    strong = stored["harmonics"]["before_dBuV"] > 120.0
    assert strong.sum() >= 20
    check("simulated anew: strong harmonics / dB",
          (anew["harmonics"]["after_dBuV"] - stored["harmonics"]["after_dBuV"])[strong], 0.5)
    check("simulated anew: ESR, relative",
          anew["summary"]["constrained_esr"] / stored["summary"]["constrained_esr"] - 1, 0.05)


def check_capture(program, capture):
    """A measured record without a time column: amplitudes from its own samples, two whole periods."""
    results = run(program, capture, "--signal", "voltage_V", "--switching-frequency", "200e3", "--window", "none")
    samples = read_table(capture)["voltage_V"][:100000]
    amplitude = np.abs(spectrum(samples, np.ones(len(samples))))
    harmonics = results["harmonics"]
    # Resampling from 100,000 to 131,072 samples lowers nothing in the band by more than its images' share.
    strong = amplitude[2 * harmonics["order"].astype(int)] > 1.0
    assert strong.sum() >= 10
    check("capture: amplitudes of the strong harmonics, relative",
          (harmonics["amplitude_V"] / amplitude[2 * harmonics["order"].astype(int)] - 1)[strong], 2e-4)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True)
    parser.add_argument("--data", required=True)
    parser.add_argument("--capture", default="")
    arguments = parser.parse_args()
    check_simulation(arguments.program, arguments.data)
    if shutil.which("ngspice"):
        check_new_simulation(arguments.program, arguments.data)
    if arguments.capture and os.path.exists(arguments.capture):
        check_capture(arguments.program, arguments.capture)
    if failures:
        print(f"{len(failures)} checks failed")
        sys.exit(1)


if __name__ == "__main__":
    main()
