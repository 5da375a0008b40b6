#pragma once

/// @file
/// The plots, drawn by gnuplot from the CSV files.

#include "Analysis.h"
#include "OutputFolder.h"
#include "Settings.h"

namespace ConverterEmi {

/// Draws waveform and spectrum, each as SVG and PNG, into the folder's temporary one, beside the CSV files
/// there.
///
/// The script for gnuplot stays with the plots, so that they can be drawn anew in another style.
Expected<void, ErrorCode2> drawPlots(Settings const& settings, Analysis const& analysis, OutputFolder& folder,
                                     Place& place);

} // namespace ConverterEmi
