#include "Analysis.h"

#include <Math/Generators.h>
#include <Math/Reductions.h>
#include <Math/VectorView2.h>

#include <common/Program.h>

#include <cmath>

namespace ConverterEmi {

namespace {

using Examples::showStep;
using Tervane::Math::VectorView2;
using Tervane::System::guard;

LimitLine limitInBand(Settings const& settings, Place& place) {
    Place const record = place;
    LimitLine const line = settings.limitFile ? LimitLine::read(*settings.limitFile, place).value()
                                              : LimitLine::builtIn(settings.band);
    line.checkCovers(settings.band, place).value();
    place = record; // what fails from here on is not the limit's fault
    return line.within(settings.band);
}

BandSpectrum lookAtBand(Band const& range, Grid const& grid, Vector2 const& amplitude, LimitLine const& limit,
                        bool hasFilter) {
    // A frequency that is a bin's own belongs to the band, however its quotient was rounded.
    constexpr double rounding = 1e-6;
    auto const first = static_cast<std::size_t>(std::ceil(range.start / grid.binWidth() - rounding));
    auto const last = static_cast<std::size_t>(std::floor(range.stop / grid.binWidth() + rounding));
    if (last < first) {
        throw Tervane::System::SystemError(Failure::NoHarmonicInBand);
    }

    BandSpectrum band;
    band.firstBin = first;
    band.frequency =
        Tervane::Math::arange(static_cast<int>(first), static_cast<int>(last + 1)) / grid.duration();
    VectorView2 const inBand(amplitude.data() + first, last + 1 - first, Tervane::Math::Column);
    band.before = toDecibelMicrovolts(Vector2(inBand));
    band.insertionLoss = hasFilter ? insertionLoss(inputFilter(), band.frequency).value()
                                   : Vector2(band.frequency.length(), 0.0);
    band.after = band.before - band.insertionLoss;
    band.limit = limit.at(band.frequency);
    return band;
}

std::vector<Harmonic> findHarmonics(double switchingFrequency, Grid const& grid, Vector2 const& amplitude,
                                    BandSpectrum const& band) {
    std::vector<Harmonic> harmonics;
    std::size_t const end = band.firstBin + band.frequency.length();
    for (std::size_t order = 1; order * grid.periods < end; ++order) {
        std::size_t const bin = order * grid.periods;
        if (bin >= band.firstBin) {
            std::size_t const i = bin - band.firstBin;
            harmonics.push_back({order, static_cast<double>(order) * switchingFrequency, amplitude[bin],
                                 band.before[i], band.insertionLoss[i], band.after[i], band.limit[i]});
        }
    }
    return harmonics;
}

CapacitorAnalysis analyseCapacitor(Settings const& settings, Record const& record, Grid const& grid,
                                   Vector2 const& window, Place& place) {
    auto const spectrumOf = [&](Vector2 const& values) {
        return computeSpectrum(resample(grid, record.time, values), window).value();
    };
    CapacitorAnalysis capacitor;
    capacitor.impedance =
        measureImpedance(spectrumOf(record.capacitor->voltage), spectrumOf(record.capacitor->current),
                         settings.switchingFrequency, grid.periods, settings.fitHarmonics, place)
            .value();
    capacitor.free = fitFreely(capacitor.impedance).value();
    capacitor.constrained = fitWithCapacitance(capacitor.impedance, settings.dcCapacitance).value();
    return capacitor;
}

} // namespace

Expected<Analysis, ErrorCode2> analyse(Settings const& settings, Place& place) {
    // value() leaves with the first step's error, and the guard returns it as this function's own.
    return guard<Analysis>([&] {
        checkBand(settings.band).value();
        showStep("reading the record");
        Record const record = readRecord(settings.source, place).value();

        Analysis analysis;
        analysis.recordLength = record.time.length();
        showStep("transforming");
        analysis.unit = record.isCurrent ? "A" : "V";
        analysis.grid =
            chooseGrid(record.time, settings.switchingFrequency, settings.band.stop, settings.samples, place)
                .value();
        analysis.signal = resample(analysis.grid, record.time, record.signal);
        analysis.mean = Tervane::Math::mean(analysis.signal);
        analysis.roundTrip = rebuild(analysis.signal).value();

        double const voltsPerUnit = record.isCurrent ? receiverResistance : 1.0;
        Vector2 const window = makeWindow(settings.window, analysis.grid.samples);
        Spectrum const spectrum = computeSpectrum(analysis.signal * voltsPerUnit, window).value();

        showStep("solving the input filter");
        analysis.hasFilter = record.circuit == filteredCircuit;
        analysis.limit = limitInBand(settings, place);
        analysis.band =
            lookAtBand(settings.band, analysis.grid, spectrum.amplitude, analysis.limit, analysis.hasFilter);
        analysis.harmonics =
            findHarmonics(settings.switchingFrequency, analysis.grid, spectrum.amplitude, analysis.band);
        if (analysis.harmonics.empty()) {
            throw Tervane::System::SystemError(Failure::NoHarmonicInBand);
        }
        if (record.capacitor) {
            showStep("fitting the capacitor");
            analysis.capacitor = analyseCapacitor(settings, record, analysis.grid, window, place);
        }
        return analysis;
    });
}

} // namespace ConverterEmi
