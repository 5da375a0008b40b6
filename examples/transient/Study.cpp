#include "Study.h"

#include "Ngspice.h"
#include "SmallSignal.h"

#include <Math/Elementwise.h>
#include <Math/Generators.h>
#include <Math/Interpolation.h>
#include <System/Guard.h>

#include <common/CsvTable.h>
#include <converter_emi/Circuit.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <iterator>

namespace Transient {

namespace {

namespace Math = Tervane::Math;

// Other work on the machine can only lengthen a run, so the shortest of some counts.
constexpr int timedRounds = 3;

// The reference's steps are a third of the netlist's, its tolerance a thousandth.
constexpr double referenceTolerance = 1e-6;
constexpr double referenceStep = 5e-9;

struct TimedSimulation {
    Circuit circuit;
    Simulation simulation;
    std::string record;
    double seconds;
};

/// A name for each probe's column.
std::vector<std::string> columnNames(Settings const& settings, Circuit const& circuit) {
    if (!settings.columns.empty() && settings.columns.size() != circuit.probes.size()) {
        throw Tervane::System::SystemError(Failure::ColumnsMismatch);
    }
    std::vector<std::string> names = settings.columns;
    if (names.empty()) {
        for (Probe const& probe : circuit.probes) {
            names.push_back(probe.name + (probe.isCurrent ? "_A" : "_V"));
        }
    }
    return names;
}

/// The record in the form that the main example reads.
std::string recordCsv(Settings const& settings, std::vector<std::string> const& names,
                      Waveforms const& waveforms) {
    std::string text =
        fmt::format("# circuit,{}\ntime_s,{}\n", settings.netlist.filename().string(), fmt::join(names, ","));
    double const start = waveforms.time.length() == 0 ? 0.0 : waveforms.time[0];
    for (std::size_t row = 0; row < waveforms.time.length(); ++row) {
        fmt::format_to(std::back_inserter(text), "{:.10e}", waveforms.time[row] - start);
        for (Vector2 const& values : waveforms.values) {
            fmt::format_to(std::back_inserter(text), ",{:.9g}", values[row]);
        }
        text += '\n';
    }
    return text;
}

/// From the netlist to the record's text, as ngspice does it, too.
TimedSimulation simulateTimed(Settings const& settings, NewtonForm form, std::optional<double> reltol,
                              std::string const& step, Place& place) {
    std::clock_t const begin = std::clock();
    Circuit circuit = readNetlist(settings.netlist, place).value();
    place = {settings.netlist.string(), 0, 0, {}};
    circuit.analysis.reltol = reltol.value_or(circuit.analysis.reltol);
    double shown = 0.0;
    auto const progress = [&](double time) {
        if (double const percent = std::floor(100.0 * time / circuit.analysis.stop); percent > shown) {
            shown = percent;
            Examples::showStep(fmt::format("{}, {:.0f} %", step, percent));
        }
    };
    Simulation simulation = simulate(circuit, form, progress, place).value();
    std::string record = recordCsv(settings, columnNames(settings, circuit), simulation.waveforms);
    double const seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    return {std::move(circuit), std::move(simulation), std::move(record), seconds};
}

/// Both forms, one after the other, @p rounds times; and @p other in between.
template<class Other>
void runForms(Settings const& settings, int rounds, Other const& other, Study& study, Place& place) {
    study.forms = {{"every unknown in each iteration", {}, HUGE_VAL},
                   {"the nonlinear branches alone", {}, HUGE_VAL}};
    for (int round = 0; round < rounds; ++round) {
        for (NewtonForm const form : {NewtonForm::Whole, NewtonForm::Ports}) {
            FormRun& run = study.forms[static_cast<std::size_t>(form)];
            auto result = simulateTimed(settings, form, settings.reltol, "simulating, " + run.name, place);
            run.effort = result.simulation.effort;
            run.seconds = std::min(run.seconds, result.seconds);
            study.waveforms = std::move(result.simulation.waveforms);
            study.record = std::move(result.record);
        }
        other();
    }
}

InsertionLoss sweep(Settings const& settings, Circuit const& circuit, Place& place) {
    auto const node = [&](std::string const& name) {
        auto const found = std::ranges::find(circuit.nodes, name);
        if (found == circuit.nodes.end()) {
            place.detail = name;
            throw Tervane::System::SystemError(Failure::NodeMissing);
        }
        return static_cast<std::size_t>(found - circuit.nodes.begin());
    };
    std::size_t const from = node(settings.insertionLossNodes[0]);
    std::size_t const to = node(settings.insertionLossNodes[1]);
    SmallSignal const linearised = SmallSignal::about(circuit, place).value();

    constexpr std::size_t frequencies = 200;
    InsertionLoss loss;
    loss.frequency = Math::exp(Math::linspace(std::log(150e3), std::log(30e6), frequencies));
    Vector2 ratio(frequencies);
    for (std::size_t i = 0; i < frequencies; ++i) {
        auto const impedance = linearised.transferImpedance(from, to, loss.frequency[i]).value();
        ratio[i] = ConverterEmi::receiverResistance / std::abs(impedance);
    }
    loss.swept = 20.0 * Math::log10(std::move(ratio));
    loss.closed = ConverterEmi::insertionLoss(ConverterEmi::inputFilter(), loss.frequency).value();
    return loss;
}

/// The compared signals of a simulation on the grid.
std::vector<Vector2> resampled(PeriodGrid const& grid, Waveforms const& waveforms) {
    std::vector<Vector2> signals;
    for (std::size_t i = 0; i < std::min(mostComparedSignals, waveforms.values.size()); ++i) {
        signals.push_back(Math::interp(grid.times, waveforms.time, waveforms.values[i]));
    }
    return signals;
}

Waveforms readStored(Settings const& settings, std::vector<std::string> const& columns, Place& place) {
    std::vector<std::string> names{"time_s"};
    names.insert(names.end(), columns.begin(), columns.end());
    auto const table = Examples::readCsv(settings.storedRecord, names, place).value();
    Waveforms waveforms;
    for (auto const& column : table.columns) {
        waveforms.values.emplace_back(column.data(), column.size());
    }
    waveforms.time = std::move(waveforms.values.front());
    waveforms.values.erase(waveforms.values.begin());
    return waveforms;
}

double periodOf(Circuit const& circuit) {
    for (VoltageSource const& source : circuit.sources) {
        if (source.waveform.period > 0.0) {
            return source.waveform.period;
        }
    }
    throw Tervane::System::SystemError(Failure::NotPeriodic);
}

class Comparing {
public:
    Comparing(Settings const& settings, Study& study, Waveforms const& reference)
        : _settings(settings),
          _study(study),
          _grid(study.circuit.analysis.start, study.circuit.analysis.stop, periodOf(study.circuit)),
          _reference(resampled(_grid, reference)) {}

    void add(std::string name, Waveforms const& waveforms) {
        ComparedRun run{std::move(name), waveforms.time.length(), {}};
        auto const signals = resampled(_grid, waveforms);
        for (std::size_t i = 0; i < signals.size(); ++i) {
            run.signals.push_back(compare(signals[i], _reference[i], _grid.periods).value());
        }
        _runs.push_back(std::move(run));
    }

    /// A stored record counts its time from its own start, which the phase of its fundamental tells.
    double addStored(Place& place) {
        Waveforms stored = readStored(_settings, _study.columns, place);
        stored.time += _study.circuit.analysis.start;
        double const late = lag(_grid, resampled(_grid, stored)[0], _reference[0]).value();
        stored.time -= late;
        add("the stored record", stored);
        return stored.time[0];
    }

    NgspiceComparison finish(double seconds, TransientAnalysis const& reference) && {
        return {seconds,
                reference,
                std::move(_runs),
                _grid,
                resampled(_grid, _study.waveforms),
                std::move(_reference),
                {}};
    }

private:
    Settings const& _settings;
    Study& _study;
    PeriodGrid _grid;
    std::vector<Vector2> _reference;
    std::vector<ComparedRun> _runs;
};

void compareWithNgspice(Settings const& settings, Study& study, Place& place) {
    NgspiceRun plain{{}, HUGE_VAL};
    runForms(
        settings, timedRounds,
        [&] {
            Examples::showStep("running ngspice");
            auto run = runNgspice(settings.netlist, study.circuit, std::nullopt, place).value();
            run.seconds = std::min(run.seconds, plain.seconds);
            plain = std::move(run);
        },
        study, place);

    Examples::showStep("running ngspice for a tight reference");
    TransientAnalysis tight = study.circuit.analysis;
    tight.reltol = referenceTolerance;
    tight.maxStep = referenceStep;
    auto const reference = runNgspice(settings.netlist, study.circuit, tight, place).value();

    Comparing comparing(settings, study, reference.waveforms);
    double const chosen = settings.reltol.value_or(study.circuit.analysis.reltol);
    comparing.add(fmt::format("reltol {:g}", chosen), study.waveforms);
    for (double reltol = chosen / 10.0; reltol > 0.9 * referenceTolerance; reltol /= 10.0) {
        std::string const name = fmt::format("reltol {:g}", reltol);
        auto const run = simulateTimed(settings, NewtonForm::Ports, reltol, "simulating, " + name, place);
        comparing.add(name, run.simulation.waveforms);
    }
    comparing.add("ngspice", plain.waveforms);
    std::optional<double> storedStart;
    if (!settings.storedRecord.empty()) {
        storedStart = comparing.addStored(place);
    }
    study.comparison = std::move(comparing).finish(plain.seconds, tight);
    study.comparison->storedStart = storedStart;
}

} // namespace

Expected<Study, ErrorCode2> runStudy(Settings const& settings, Place& place) {
    return Tervane::System::guard<Study>([&] {
        Study study;
        study.circuit = readNetlist(settings.netlist, place).value();
        study.unknowns = NodalEquations(study.circuit).order();
        study.columns = columnNames(settings, study.circuit);
        if (!settings.insertionLossNodes.empty()) {
            study.insertionLoss = sweep(settings, study.circuit, place);
        }
        if (settings.compare) {
            compareWithNgspice(settings, study, place);
        } else {
            runForms(
                settings, 1, [] {}, study, place);
        }
        return study;
    });
}

} // namespace Transient
