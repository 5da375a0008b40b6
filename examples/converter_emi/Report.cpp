#include "Report.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace ConverterEmi {

namespace {

constexpr std::size_t mostHarmonicsShown = 20;

template<class... Arguments>
void line(std::string& text, fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    fmt::format_to(std::back_inserter(text), format, std::forward<Arguments>(arguments)...);
    text += '\n';
}

/// The harmonics with the least margins, in ascending order of frequency.
std::vector<Harmonic> mostCritical(std::vector<Harmonic> harmonics) {
    auto const shown = std::min(mostHarmonicsShown, harmonics.size());
    auto const end = harmonics.begin() + static_cast<std::ptrdiff_t>(shown);
    std::ranges::partial_sort(harmonics, end, {}, &Harmonic::margin);
    harmonics.resize(shown);
    std::ranges::sort(harmonics, {}, &Harmonic::order);
    return harmonics;
}

template<class Margin>
void addVerdict(std::string& text, std::string const& what, std::vector<Harmonic> const& harmonics,
                Margin margin) {
    Harmonic const& worst = *std::ranges::min_element(harmonics, {}, margin);
    double const least = (worst.*margin)();
    line(text, "  {:<16} {}, least margin {:.1f} dB at {:.3f} MHz (harmonic {})", what,
         least >= 0.0 ? "PASS" : "FAIL", least, worst.frequency / 1e6, worst.order);
}

void addFit(std::string& text, std::string const& what, CapacitorFit const& fit) {
    line(text, "  {:<26} {:>9.3f} {:>9.3f} {:>9.3f} {:>13.4f}", what, fit.model.resistance * 1e3,
         fit.model.inductance * 1e9, fit.model.capacitance * 1e6, fit.rmsResidual * 1e3);
}

} // namespace

std::string formatReport(Settings const& settings, Analysis const& analysis,
                         std::vector<std::string> const& files) {
    Grid const& grid = analysis.grid;
    std::string text;

    line(text, "Conducted emissions of a switching converter");
    line(text, "");
    line(text, "Record             {}, column {}, {} samples", settings.source.file.string(),
         settings.source.signalColumn, analysis.recordLength);
    line(text, "Analysed           {} switching periods at {:.3f} kHz, {:.3f} us; mean {:.4g} {}",
         grid.periods, settings.switchingFrequency / 1e3, grid.duration() * 1e6, analysis.mean,
         analysis.unit);
    line(text, "Resampled to       {} samples, {:.4f} ns apart; bins {:.3f} kHz apart", grid.samples,
         grid.interval * 1e9, grid.binWidth() / 1e3);
    line(text, "Window             {}; loops run {}", nameOf(settings.window), nameOf(settings.policy));
    line(text, "Round trip         waveform rebuilt from its transform within {:.2g} {}",
         analysis.roundTrip.largestError, analysis.unit);
    line(text, "Band               {:.3f} kHz to {:.3f} MHz, {} bins, {} harmonics",
         settings.band.start / 1e3, settings.band.stop / 1e6, analysis.band.frequency.length(),
         analysis.harmonics.size());
    line(text, "Limit line         {}",
         settings.limitFile ? settings.limitFile->string() : "built in, average");
    line(text, "");

    auto const shown = mostCritical(analysis.harmonics);
    line(text, "Emission at harmonics, RMS{}",
         shown.size() < analysis.harmonics.size()
             ? fmt::format(" (the {} with the least margins of {})", shown.size(), analysis.harmonics.size())
             : "");
    line(text, "  {:>5} {:>13} {:>12} {:>15} {:>12} {:>10} {:>10}", "order", "frequency/MHz", "before/dBuV",
         "filter loss/dB", "after/dBuV", "limit/dBuV", "margin/dB");
    for (Harmonic const& harmonic : shown) {
        line(text, "  {:>5} {:>13.3f} {:>12.1f} {:>15.1f} {:>12.1f} {:>10.1f} {:>10.1f}", harmonic.order,
             harmonic.frequency / 1e6, harmonic.before, harmonic.insertionLoss, harmonic.after,
             harmonic.limit, harmonic.margin());
    }
    line(text, "");
    line(text, "Verdict");
    addVerdict(text, "without filter", analysis.harmonics, &Harmonic::marginBefore);
    addVerdict(text, "with filter", analysis.harmonics, &Harmonic::margin);
    line(text, "");

    if (analysis.capacitor) {
        auto const& capacitor = *analysis.capacitor;
        line(text, "Output capacitor, impedance at {} harmonics up to {:.3f} MHz",
             capacitor.impedance.frequency.size(), capacitor.impedance.frequency.back() / 1e6);
        line(text, "  {:<26} {:>9} {:>9} {:>9} {:>13}", "fit", "ESR/mohm", "ESL/nH", "C/uF", "residual/mohm");
        addFit(text, "ESR, ESL and C free", capacitor.free);
        addFit(text, "C held at its DC value", capacitor.constrained);
        line(text, "");
    }

    line(text, "Written to {}: {}", settings.output.string(), fmt::join(files, ", "));
    return text;
}

} // namespace ConverterEmi
