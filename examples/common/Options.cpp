#include "Options.h"

#include <cstdlib>
#include <iostream>

namespace Examples {

namespace {

using Tervane::Math::AlgorithmExecutionPolicy;

std::map<std::string, AlgorithmExecutionPolicy> const policies{
    {"inline", Tervane::Math::Inline},
    {"parallel", Tervane::Math::Parallel},
    {"parallel-unsequenced", Tervane::Math::ParallelUnsequenced},
    {"sequenced", Tervane::Math::Sequenced}};

} // namespace

char const* nameOf(AlgorithmExecutionPolicy policy) {
    return nameIn(policies, policy);
}

void setStyle(CLI::App& app) {
    app.option_defaults()->always_capture_default()->take_last();
    app.get_formatter()->column_width(34);
}

void addProgramOptions(CLI::App& app, ProgramSettings& settings) {
    app.add_option(
           "--policy", settings.policy,
           "How the library's loops run: inline, parallel, parallel-unsequenced or sequenced; the results "
           "are the same")
        ->transform(CLI::CheckedTransformer(policies).description(""))
        ->default_str(nameOf(settings.policy))
        ->type_name("POLICY");
    app.add_option("--output", settings.output, "Folder for the CSV files and plots")->type_name("FOLDER");
    app.add_flag("!--no-plots", settings.plots, "Write the CSV files only; needs no gnuplot");
}

std::optional<int> parse(CLI::App& app, int argc, char const* const* argv) {
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        int const exitCode = app.exit(error);
        if (!std::cout.flush()) {
            std::cerr << std::filesystem::path(app.get_name()).filename().string()
                      << ": standard output: file cannot be written\n";
            return EXIT_FAILURE;
        }
        return exitCode;
    }
    return std::nullopt;
}

} // namespace Examples
