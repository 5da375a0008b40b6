#!/usr/bin/env python3
"""Hands NumPy arrays to the example's Python module. Exit code 77 without NumPy."""

import sys

try:
    import numpy as np
except ImportError as missing:
    print(f"skipped: {missing}")
    sys.exit(77)

sys.path.insert(0, sys.argv[1])
import tvnmath_numpy

vector = tvnmath_numpy.Vector2(np.arange(5))  # integers are converted
seen = np.asarray(vector)
assert len(vector) == 5 and seen.dtype == np.float64 and seen.tolist() == [0, 1, 2, 3, 4]
seen[2] = 7.0
assert np.asarray(vector)[2] == 7.0, "the array does not look at the vector in place"
assert seen.__array_interface__["data"][0] % 64 == 0

strided = np.arange(10.0)[::2]
assert np.asarray(tvnmath_numpy.Vector2(strided)).tolist() == strided.tolist()

samples = np.sin(0.3 * np.arange(1000))
assert np.allclose(tvnmath_numpy.spectrum(samples), np.abs(np.fft.rfft(samples)), rtol=0, atol=1e-10)

for wrong, error in ((np.zeros((2, 2)), ValueError), (np.zeros(0), RuntimeError)):
    try:
        tvnmath_numpy.spectrum(wrong)
    except error:
        continue
    sys.exit(f"{wrong.shape} was accepted")
