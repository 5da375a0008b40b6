#include "Settings.h"

#include <common/Options.h>

#include <map>
#include <string>
#include <vector>

namespace ConverterEmi {

namespace {

using Examples::isPositive;

std::map<std::string, WindowKind> const windows{{"none", WindowKind::None},
                                                {"hann", WindowKind::Hann},
                                                {"hamming", WindowKind::Hamming},
                                                {"blackman", WindowKind::Blackman}};

} // namespace

char const* nameOf(WindowKind window) {
    return Examples::nameIn(windows, window);
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
    Examples::setStyle(app);

    app.add_option(
           "input", source.file,
           "CSV file with named columns; /dev/stdin works, too. Lines that start with # are comments. "
           "Without "
           "the time column, a comment '# sample_interval_s,SECONDS' says how far apart the rows are.")
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
    Examples::addProgramOptions(app, settings.program);
    app.footer("The exit code is 0 when the analysis was done, whatever its verdict.");

    commandLine.exitCode = Examples::parse(app, argc, argv);
    if (!capacitorColumns.empty()) {
        source.voltageColumn = capacitorColumns[0];
        source.currentColumn = capacitorColumns[1];
    }
    return commandLine;
}

} // namespace ConverterEmi
