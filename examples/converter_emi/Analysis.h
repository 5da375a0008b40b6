#pragma once

/// @file
/// The whole chain from a record to margins and a capacitor's model.

#include "Circuit.h"
#include "Emission.h"
#include "Failure.h"
#include "Record.h"
#include "Settings.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace ConverterEmi {

/// Levels at the bins of the transform that lie in the band; all of one length.
struct BandSpectrum {
    std::size_t firstBin = 0; ///< the transform's bin that element 0 stands for
    Vector2 frequency;        ///< Hz
    Vector2 before;           ///< dBuV, without the input filter
    Vector2 insertionLoss;    ///< dB, of the input filter; 0 without one
    Vector2 after;            ///< dBuV, past the input filter
    Vector2 limit;            ///< dBuV
};

/// The emission at one harmonic of the switching frequency.
struct Harmonic {
    std::size_t order;
    double frequency;     ///< Hz
    double amplitude;     ///< V, peak value without the input filter
    double before;        ///< dBuV, without the input filter
    double insertionLoss; ///< dB, of the input filter; 0 without one
    double after;         ///< dBuV, past the input filter
    double limit;         ///< dBuV

    double marginBefore() const { return limit - before; } ///< dB, negative when the limit is exceeded
    double margin() const { return limit - after; }        ///< dB, negative when the limit is exceeded
};

/// The output capacitor's impedance and the two models fitted to it.
struct CapacitorAnalysis {
    Impedance impedance;
    CapacitorFit free;
    CapacitorFit constrained;
};

struct Analysis {
    std::size_t recordLength = 0; ///< rows of the input
    Grid grid;
    Vector2 signal;         ///< the resampled signal in its own unit
    char const* unit = "V"; ///< of the signal: V or A
    double mean = 0.0;
    RoundTrip roundTrip;
    bool hasFilter = false; ///< whether the record is of the circuit that the input filter belongs to
    LimitLine limit;        ///< in the band
    BandSpectrum band;
    std::vector<Harmonic> harmonics; ///< in the band, in ascending order; never empty
    std::optional<CapacitorAnalysis> capacitor;
};

/// Runs the chain. On failure @p place tells where.
Expected<Analysis, ErrorCode2> analyse(Settings const& settings, Place& place);

} // namespace ConverterEmi
