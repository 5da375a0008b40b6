#pragma once

/// @file
/// How far two simulations of a periodic circuit are apart.

#include "Gear.h"

#include <array>

namespace Transient {

/// Evenly spaced times over a whole number of the circuit's periods.
struct PeriodGrid {
    Vector2 times;       ///< s
    double period;       ///< s
    std::size_t periods; ///< as many as all simulations cover

    /// @param start s
    /// @param stop s, how far all simulations reach
    /// @param circuitPeriod s
    PeriodGrid(double start, double stop, double circuitPeriod);
};

inline constexpr std::size_t comparedHarmonics = 20;

/// How far a signal is from its reference.
struct Difference {
    double mean;                                     ///< of both means, relative to the reference's
    double rms;                                      ///< of the difference, relative to the reference's
    double peak;                                     ///< of the difference, relative to the reference's
    std::array<double, comparedHarmonics> harmonics; ///< dB, of the amplitudes

    double largestHarmonic() const; ///< dB
};

/// Compares two signals on a grid.
Expected<Difference, ErrorCode2> compare(Vector2 const& signal, Vector2 const& reference,
                                         std::size_t periods);

/// By how many seconds @p signal lags @p reference, from the phases of their fundamentals.
Expected<double, ErrorCode2> lag(PeriodGrid const& grid, Vector2 const& signal, Vector2 const& reference);

} // namespace Transient
