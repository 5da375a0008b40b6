#include "Settings.h"

#include <common/Options.h>

namespace Transient {

CommandLine parseCommandLine(int argc, char const* const* argv) {
    CommandLine commandLine;
    Settings& settings = commandLine.settings;

    CLI::App app{"Simulates a circuit over time by modified nodal analysis, from a netlist to a record."};
    Examples::setStyle(app);
    app.add_option("netlist", settings.netlist,
                   "Netlist in SPICE's language: R, L, C, V, D and a smooth transistor; what else is in it "
                   "is refused")
        ->required()
        ->type_name("FILE");
    app.add_option("--columns", settings.columns,
                   "Names for the netlist's quantities in the record, in its order")
        ->expected(1, 1000)
        ->default_str("")
        ->type_name("COLUMN");
    app.add_option("--reltol", settings.reltol, "Relative tolerance, in place of the netlist's")
        ->check(Examples::isPositive, "")
        ->type_name("NUMBER");
    app.add_option("--insertion-loss", settings.insertionLossNodes,
                   "Nodes between which an AC sweep finds the filter's insertion loss, the receiver last; "
                   "it is compared with the main example's calculation")
        ->expected(2)
        ->default_str("")
        ->type_name("NODE");
    app.add_flag("--compare", settings.compare,
                 "Run ngspice on the netlist, too, and compare results and cost; takes half a minute");
    app.add_option("--stored", settings.storedRecord,
                   "With --compare: a stored record of ngspice's, with the same columns")
        ->type_name("FILE");
    Examples::addProgramOptions(app, settings.program);

    commandLine.exitCode = Examples::parse(app, argc, argv);
    return commandLine;
}

} // namespace Transient
