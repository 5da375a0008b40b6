#include "Ngspice.h"

#include <System/Guard.h>

#include <common/ChildProcess.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>

namespace Transient {

namespace {

namespace fs = std::filesystem;

/// A new folder, removed with all that is in it.
class TemporaryFolder {
public:
    TemporaryFolder() : _path((fs::temp_directory_path() / "transient-XXXXXX").string()) {
        if (mkdtemp(_path.data()) == nullptr) {
            throw Tervane::System::SystemError(Examples::FileFailure::FileNotWritable);
        }
    }
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        fs::remove_all(_path, ignored);
    }

    fs::path path() const { return _path; }

private:
    std::string _path;
};

std::string adapted(std::string text, std::optional<TransientAnalysis> const& analysis) {
    auto const replace = [&](char const* pattern, std::string const& by) {
        text = std::regex_replace(text, std::regex(pattern, std::regex::icase), by);
    };
    replace("wrdata\\s+\\S+", "wrdata samples.txt");
    if (analysis) {
        replace("reltol\\s*=\\s*[^\\s)]+", fmt::format("reltol={:e}", analysis->reltol));
        replace("\n(\\.?tran)\\s[^\n]*", fmt::format("\n$1 {0:e} {1:e} {2:e} {0:e} uic", analysis->maxStep,
                                                     analysis->stop, analysis->start));
    }
    return text;
}

/// The file that ngspice's `wrdata` wrote: in each row the time, then the probes. A step too short for the
/// digits that were written is left out.
Waveforms readSamples(fs::path const& file, std::size_t probes) {
    std::ifstream stream(file);
    std::vector<std::vector<double>> columns(1 + probes);
    std::vector<double> row(1 + probes);
    while (std::ranges::all_of(row, [&](double& value) { return static_cast<bool>(stream >> value); })) {
        if (!columns[0].empty() && !(row[0] > columns[0].back())) {
            continue;
        }
        for (std::size_t i = 0; i < row.size(); ++i) {
            columns[i].push_back(row[i]);
        }
    }
    Waveforms waveforms{Vector2(columns[0].data(), columns[0].size()), {}};
    for (std::size_t i = 1; i < columns.size(); ++i) {
        waveforms.values.emplace_back(columns[i].data(), columns[i].size());
    }
    return waveforms;
}

} // namespace

Expected<NgspiceRun, ErrorCode2> runNgspice(fs::path const& netlist, Circuit const& circuit,
                                            std::optional<TransientAnalysis> const& analysis, Place& place) {
    return Tervane::System::guard<NgspiceRun>([&]() -> Expected<NgspiceRun, ErrorCode2> {
        TemporaryFolder const folder;
        std::ifstream original(netlist);
        std::string const text(std::istreambuf_iterator<char>(original), {});
        std::ofstream(folder.path() / "circuit.cir") << adapted(text, analysis);
        auto const child = Examples::runChild(folder.path(), {"ngspice", "-b", "circuit.cir"}, "ngspice.log");
        // Its exit code says nothing; what it wrote does.
        NgspiceRun run{readSamples(folder.path() / "samples.txt", circuit.probes.size()), child.seconds};
        if (run.waveforms.time.length() == 0) {
            std::ifstream log(folder.path() / "ngspice.log");
            place = {netlist.string(), 0, 0, {}};
            std::getline(log, place.detail);
            return Failure::SimulatorFailed;
        }
        return run;
    });
}

} // namespace Transient
