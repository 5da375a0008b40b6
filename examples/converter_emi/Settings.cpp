#include "Settings.h"

#include "CsvTable.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace ConverterEmi {

namespace {

using Tervane::Math::AlgorithmExecutionPolicy;

std::map<std::string, WindowKind> const windows{{"none", WindowKind::None},
                                                {"hann", WindowKind::Hann},
                                                {"hamming", WindowKind::Hamming},
                                                {"blackman", WindowKind::Blackman}};

std::map<std::string, AlgorithmExecutionPolicy> const policies{
    {"inline", Tervane::Math::Inline},
    {"parallel", Tervane::Math::Parallel},
    {"parallel-unsequenced", Tervane::Math::ParallelUnsequenced},
    {"sequenced", Tervane::Math::Sequenced}};

/// Empty when @p text is a positive number; else what is wrong with it.
std::string isPositive(std::string const& text) {
    auto const number = parseNumber(text);
    return number && *number > 0.0 ? "" : "'" + text + "' is not a positive number";
}

template<class Value>
char const* nameIn(std::map<std::string, Value> const& names, Value value) {
    auto const found = std::ranges::find(names, value, &std::pair<std::string const, Value>::second);
    return found == names.end() ? "?" : found->first.c_str();
}

} // namespace

char const* nameOf(WindowKind window) {
    return nameIn(windows, window);
}

char const* nameOf(AlgorithmExecutionPolicy policy) {
    return nameIn(policies, policy);
}

CommandLine parseCommandLine(int argc, char const* const* argv) {
    CommandLine commandLine;
    Settings& settings = commandLine.settings;
    RecordSource& source = settings.source;
    source.timeColumn = "time_s";
    source.signalColumn = "input_current_A";
    std::vector<std::string> capacitorColumns;

    CLI::App app{
        "Conducted emissions of a switching converter: spectrum, limit line, input filter and output "
        "capacitor, from a simulated or measured record."};
    app.option_defaults()->always_capture_default()->take_last();
    app.get_formatter()->column_width(34);

    app.add_option(
           "input", source.file,
           "CSV file with named columns. Lines that start with # are comments. Without the time column, "
           "a comment '# sample_interval_s,SECONDS' says how far apart the rows are.")
        ->required()
        ->type_name("FILE");
    app.add_option("--time", source.timeColumn, "Column of times in s, increasing in steps of any size")
        ->type_name("COLUMN");
    app.add_option(
           "--signal", source.signalColumn,
           "Column of the emission: a voltage in V, or, when the name ends in _A, the current in A that "
           "the converter draws, which is taken to flow into the receiver's 50 ohm")
        ->type_name("COLUMN");
    app.add_option(
           "--capacitor", capacitorColumns,
           "Columns of the output capacitor's voltage in V and current in A; without them there is no fit")
        ->expected(2)
        ->default_str("")
        ->type_name("COLUMN");
    app.add_option("--switching-frequency", settings.switchingFrequency, "Switching frequency in Hz")
        ->check(isPositive, "")
        ->type_name("HZ");
    app.add_option("--window", settings.window,
                   "none, hann, hamming or blackman; a record of very few periods is best left without")
        ->transform(CLI::CheckedTransformer(windows).description(""))
        ->default_str(nameOf(settings.window))
        ->type_name("WINDOW");
    app.add_option("--start", settings.band.start, "Band's start in Hz, at least 9000")->type_name("HZ");
    app.add_option("--stop", settings.band.stop, "Band's end in Hz")->type_name("HZ");
    app.add_option(
           "--limit", settings.limitFile,
           "CSV file with the limit line's corners in columns frequency_Hz and limit_dBuV; built in: the "
           "average limits usual for mains equipment, 9 kHz to 30 MHz")
        ->type_name("FILE");
    app.add_option("--samples", settings.samples,
                   "Samples after resampling; when not given: the next power of two from the record's own "
                   "number, and from 16 per period of the band's end")
        ->type_name("NUMBER");
    app.add_option("--fit-harmonics", settings.fitHarmonics,
                   "Harmonics that the capacitor fit uses, 2 or more")
        ->check(CLI::Range(std::size_t(2), std::size_t(1000)).description(""))
        ->type_name("NUMBER");
    app.add_option("--dc-capacitance", settings.dcCapacitance,
                   "Output capacitor's capacitance at DC in F, which the second fit holds exactly")
        ->check(isPositive, "")
        ->type_name("F");
    app.add_option(
           "--policy", settings.policy,
           "How the library's loops run: inline, parallel, parallel-unsequenced or sequenced; the results "
           "are the same")
        ->transform(CLI::CheckedTransformer(policies).description(""))
        ->default_str(nameOf(settings.policy))
        ->type_name("POLICY");
    app.add_option("--output", settings.output, "Folder for the CSV files and plots")->type_name("FOLDER");
    app.add_flag("!--no-plots", settings.plots, "Write the CSV files only; needs no gnuplot");
    app.footer("The exit code is 0 when the analysis was done, whatever its verdict.");

    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        commandLine.exitCode = app.exit(error);
        return commandLine;
    }
    if (!capacitorColumns.empty()) {
        source.voltageColumn = capacitorColumns[0];
        source.currentColumn = capacitorColumns[1];
    }
    return commandLine;
}

} // namespace ConverterEmi
