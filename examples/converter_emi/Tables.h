#pragma once

/// @file
/// The results as CSV text, one function for each file.

#include "Analysis.h"

#include <string>

namespace ConverterEmi {

std::string waveformCsv(Analysis const& analysis);  ///< the resampled and the rebuilt signal over time
std::string spectrumCsv(Analysis const& analysis);  ///< levels at every bin of the band
std::string limitCsv(Analysis const& analysis);     ///< corners of the limit line in the band
std::string harmonicsCsv(Analysis const& analysis); ///< levels and margins at the harmonics
std::string capacitorCsv(CapacitorAnalysis const& capacitor); ///< impedance, measured and by both models
std::string summaryCsv(Analysis const& analysis);             ///< single figures: quantity, value, unit

} // namespace ConverterEmi
