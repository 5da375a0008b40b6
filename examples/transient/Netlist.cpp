#include "Netlist.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <limits>
#include <map>
#include <regex>
#include <set>

namespace Transient {

namespace {

// No netlist comes near these; they keep one with a slip of the pen from filling the memory or the stack.
constexpr std::size_t longestLine = 1000;
constexpr double mostRepeats = 1e7;
constexpr double mostSteps = 1e9;

constexpr double infinity = std::numeric_limits<double>::infinity();

/// What a value may be: more than `above`, or at least that where `included`, and less than `below`.
struct Range {
    double above = -infinity;
    bool included = false;
    double below = infinity;

    bool holds(double value) const { return (included ? value >= above : value > above) && value < below; }
};

constexpr Range any{};
constexpr Range positive{.above = 0.0};
constexpr Range notNegative{.above = 0.0, .included = true};

/// Thrown by the parser's parts, and turned into the returned error in one place.
struct Refusal {
    Failure failure;
    std::string detail;
};

/// A number with SPICE's scale factors; letters behind it are a unit.
double parseNumber(std::string const& text, Range range = any) {
    static std::vector<std::pair<std::string, double>> const factors{
        {"meg", 1e6}, {"t", 1e12}, {"g", 1e9},   {"k", 1e3},  {"m", 1e-3},
        {"u", 1e-6},  {"n", 1e-9}, {"p", 1e-12}, {"f", 1e-15}};
    char const* const end = text.data() + text.size();
    double value = 0.0;
    auto const [stop, error] = std::from_chars(text.data(), end, value);
    std::string const unit(stop, end);
    if (error != std::errc() || !std::ranges::all_of(unit, [](char c) { return c >= 'a' && c <= 'z'; })) {
        throw Refusal{Failure::NumberMalformed, text};
    }
    auto const factor =
        std::ranges::find_if(factors, [&](auto const& known) { return unit.starts_with(known.first); });
    value *= factor == factors.end() ? 1.0 : factor->second;
    if (!std::isfinite(value) || !range.holds(value)) {
        throw Refusal{Failure::ValueOutOfRange, text};
    }
    return value;
}

/// The fields of a line, taken from the left.
class Fields {
public:
    /// Spaces separate fields; so do the brackets and commas of lists. An equals sign is a field.
    explicit Fields(std::string const& line) {
        static std::regex const field("=|[^\\s(),=]+");
        for (std::sregex_iterator found(line.begin(), line.end(), field), none; found != none; ++found) {
            _fields.push_back(found->str());
        }
    }

    bool isAtEnd() const { return _next == _fields.size(); }
    std::string const& peek() const { return isAtEnd() ? nothing() : _fields[_next]; }

    std::string take() {
        if (isAtEnd()) {
            throw Refusal{Failure::FieldMissing, {}};
        }
        return _fields[_next++];
    }
    double takeNumber(Range range = any) { return parseNumber(take(), range); }

    /// Takes @p wanted when it comes next.
    bool takeIf(std::string const& wanted) {
        bool const comes = peek() == wanted;
        _next += comes ? 1 : 0;
        return comes;
    }
    void expect(std::string const& wanted) {
        std::string const field = take();
        if (field != wanted) {
            throw Refusal{Failure::FieldNotKnown, field + " where " + wanted + " belongs"};
        }
    }
    void expectEnd() const {
        if (!isAtEnd()) {
            throw Refusal{Failure::FieldNotKnown, peek()};
        }
    }

private:
    static std::string const& nothing() {
        static std::string const empty;
        return empty;
    }

    std::vector<std::string> _fields;
    std::size_t _next = 0;
};

struct DiodeModel {
    Diode diode;
    double seriesResistance = 0.0;
};

class Parser {
public:
    /// Reads one line, in lower case; false after the last.
    bool read(std::string const& text, std::size_t number) {
        _line = number;
        if (text.size() > longestLine) {
            throw Refusal{Failure::ValueOutOfRange, "line too long"};
        }
        Fields fields(text);
        if (fields.isAtEnd() || text.starts_with('*')) {
            return true;
        }
        std::string const first = fields.take();
        if (_inControl || first.starts_with('.')) {
            return readCommand(first, fields);
        }
        readElement(first, fields, text);
        return true;
    }

    /// Resolves what may stand before its definition. A fault goes back to the line that needs it.
    Circuit finish() {
        for (auto const& use : _diodes) {
            _line = use.line;
            addDiode(use);
        }
        for (GateUse const& use : _gates) {
            _line = use.line;
            if (std::ranges::none_of(_circuit.sources, [&](VoltageSource const& source) {
                    return source.branch.from == use.gate && source.branch.to == ground;
                })) {
                throw Refusal{Failure::GateNotDriven, {}};
            }
        }
        _circuit.initialVoltages.assign(_circuit.nodes.size(), 0.0);
        for (auto const& [line, name, value] : _initial) {
            _line = line;
            _circuit.initialVoltages[existingNode(name)] = value;
        }
        for (auto const& [line, kind, name] : _probes) {
            _line = line;
            addProbe(kind, name);
        }
        _line = _analysisLine;
        if (_line == 0) {
            throw Refusal{Failure::AnalysisMissing, {}};
        }
        for (VoltageSource const& source : _circuit.sources) {
            if (source.waveform.period * mostRepeats < _circuit.analysis.stop
                && source.waveform.period > 0.0) {
                throw Refusal{Failure::ValueOutOfRange, "too many periods of " + source.name};
            }
        }
        return std::move(_circuit);
    }

    std::size_t line() const { return _line; }

private:
    struct DiodeUse {
        std::size_t line;
        std::string name;
        Branch branch;
        std::string model;
    };
    struct GateUse {
        std::size_t line;
        int gate;
    };
    struct InitialVoltage {
        std::size_t line;
        std::string node;
        double value;
    };
    struct ProbeUse {
        std::size_t line;
        std::string kind;
        std::string name;
    };

    int node(std::string const& name) {
        if (name == "0" || name == "gnd") {
            return ground;
        }
        auto const found = std::ranges::find(_circuit.nodes, name);
        if (found == _circuit.nodes.end()) {
            _circuit.nodes.push_back(name);
            return static_cast<int>(_circuit.nodes.size()) - 1;
        }
        return static_cast<int>(found - _circuit.nodes.begin());
    }
    std::size_t existingNode(std::string const& name) const {
        auto const found = std::ranges::find(_circuit.nodes, name);
        if (found == _circuit.nodes.end()) {
            throw Refusal{Failure::NodeMissing, name};
        }
        return static_cast<std::size_t>(found - _circuit.nodes.begin());
    }
    Branch takeBranch(Fields& fields) {
        int const from = node(fields.take());
        return {from, node(fields.take())};
    }

    void readElement(std::string const& name, Fields& fields, std::string const& text) {
        if (!_names.insert(name).second) {
            throw Refusal{Failure::NameTaken, name};
        }
        switch (name[0]) {
        case 'r': {
            Branch const branch = takeBranch(fields);
            _circuit.resistors.push_back({branch, fields.takeNumber(positive)});
            break;
        }
        case 'c': {
            Branch const branch = takeBranch(fields);
            double const value = fields.takeNumber(positive);
            _circuit.capacitors.push_back({branch, value, takeInitial(fields)});
            break;
        }
        case 'l': {
            Branch const branch = takeBranch(fields);
            double const value = fields.takeNumber(positive);
            _circuit.inductors.push_back({name, branch, value, takeInitial(fields).value_or(0.0)});
            break;
        }
        case 'v': {
            Branch const branch = takeBranch(fields);
            _circuit.sources.push_back({name, branch, takeWaveform(fields)});
            break;
        }
        case 'd': {
            Branch const branch = takeBranch(fields);
            _diodes.push_back({_line, name, branch, fields.take()});
            break;
        }
        case 'b':
            readTransistor(fields, text);
            return;
        default:
            throw Refusal{Failure::LineNotKnown, name};
        }
        fields.expectEnd();
    }

    static std::optional<double> takeInitial(Fields& fields) {
        if (!fields.takeIf("ic")) {
            return std::nullopt;
        }
        fields.expect("=");
        return fields.takeNumber();
    }

    static Waveform takeWaveform(Fields& fields) {
        Waveform waveform;
        if (fields.takeIf("pulse")) {
            waveform.low = fields.takeNumber();
            waveform.high = fields.takeNumber();
            waveform.delay = fields.takeNumber(notNegative);
            waveform.rise = fields.takeNumber(positive);
            waveform.fall = fields.takeNumber(positive);
            waveform.width = fields.takeNumber(notNegative);
            // The sum may come out above a period of the same length by rounding.
            double const pulse = waveform.rise + waveform.width + waveform.fall;
            waveform.period = fields.takeNumber({.above = pulse * (1.0 - 1e-12), .included = true});
        } else {
            fields.takeIf("dc");
            waveform.low = fields.takeNumber();
        }
        return waveform;
    }

    void readTransistor(Fields& fields, std::string const& text) {
        Branch const branch = takeBranch(fields);
        static std::regex const form(
            R"(\S+\s+(\S+)\s+(\S+)\s+i\s*=\s*v\((\S+?),(\S+?)\)\*([^\s*]+)\*10\^\(-([^\s*]+)\*\(1-v\((\S+?)\)\)\)\s*)");
        std::smatch part;
        if (!std::regex_match(text, part, form) || part[1] != part[3] || part[2] != part[4]) {
            throw Refusal{Failure::FieldNotKnown,
                          "a current is known as I=v(D,S)*G*10^(-K*(1-v(GATE))) from D to S only"};
        }
        Transistor const transistor{parseNumber(part[5], positive), parseNumber(part[6], notNegative)};
        int const gate = node(part[7]);
        _gates.push_back({_line, gate});
        _circuit.nonlinear.push_back({branch, gate, transistor});
    }

    void addDiode(DiodeUse const& use) {
        auto const model = _models.find(use.model);
        if (model == _models.end()) {
            throw Refusal{Failure::ModelMissing, use.model};
        }
        Branch junction = use.branch;
        if (model->second.seriesResistance > 0.0) {
            junction.from = node(use.name + "#junction");
            _circuit.resistors.push_back({{use.branch.from, junction.from}, model->second.seriesResistance});
        }
        _circuit.nonlinear.push_back({junction, ground, model->second.diode});
    }

    void addProbe(std::string const& kind, std::string const& name) {
        std::string const text = kind + "(" + name + ")";
        if (kind == "v") {
            _circuit.probes.push_back({text, false, existingNode(name)});
            return;
        }
        auto const found = std::ranges::find(_circuit.sources, name, &VoltageSource::name);
        if (found == _circuit.sources.end()) {
            throw Refusal{Failure::SourceMissing, name};
        }
        _circuit.probes.push_back({text, true, static_cast<std::size_t>(found - _circuit.sources.begin())});
    }

    bool readCommand(std::string const& name, Fields& fields) {
        if (name == ".endc" && _inControl) {
            _inControl = false;
        } else if (name == ".control" && !_inControl) {
            _inControl = true;
        } else if (name == (_inControl ? "tran" : ".tran")) {
            readAnalysis(fields);
        } else if (_inControl && name == "set") {
            // Both concern the form of the file that ngspice writes.
            if (!fields.takeIf("wr_singlescale")) {
                fields.expect("numdgt");
                fields.expect("=");
                fields.takeNumber(positive);
            }
        } else if (_inControl && name == "wrdata") {
            fields.take();
            while (!fields.isAtEnd()) {
                std::string const kind = fields.take();
                if (kind != "v" && kind != "i") {
                    throw Refusal{Failure::FieldNotKnown, kind};
                }
                _probes.push_back({_line, kind, fields.take()});
            }
        } else if (!_inControl && name == ".model") {
            readModel(fields);
        } else if (!_inControl && name == ".ic") {
            while (!fields.isAtEnd()) {
                fields.expect("v");
                std::string const initialNode = fields.take();
                fields.expect("=");
                _initial.push_back({_line, initialNode, fields.takeNumber()});
            }
        } else if (!_inControl && name == ".options") {
            readOptions(fields);
        } else if (!_inControl && name == ".end") {
            return false;
        } else {
            throw Refusal{Failure::LineNotKnown, name};
        }
        fields.expectEnd();
        return true;
    }

    void readAnalysis(Fields& fields) {
        TransientAnalysis& analysis = _circuit.analysis;
        analysis.maxStep = fields.takeNumber(positive);
        analysis.stop = fields.takeNumber(positive);
        if (!fields.isAtEnd() && fields.peek() != "uic") {
            analysis.start = fields.takeNumber({.above = 0.0, .included = true, .below = analysis.stop});
        }
        if (!fields.isAtEnd() && fields.peek() != "uic") {
            analysis.maxStep = fields.takeNumber(positive);
        }
        fields.expect("uic"); // without it, an operating point would come first
        if (analysis.stop / analysis.maxStep > mostSteps) {
            throw Refusal{Failure::ValueOutOfRange, "too many steps"};
        }
        _analysisLine = _line;
    }

    void readOptions(Fields& fields) {
        while (!fields.isAtEnd()) {
            std::string const name = fields.take();
            fields.expect("=");
            if (name == "method") {
                fields.expect("gear");
            } else if (name == "reltol") {
                _circuit.analysis.reltol = fields.takeNumber(positive);
            } else if (name == "vntol") {
                _circuit.analysis.vntol = fields.takeNumber(positive);
            } else if (name == "abstol") {
                _circuit.analysis.abstol = fields.takeNumber(positive);
            } else if (name == "chgtol") {
                fields.takeNumber(positive); // our truncation error is measured in volts and amperes
            } else {
                throw Refusal{Failure::FieldNotKnown, name};
            }
        }
    }

    void readModel(Fields& fields) {
        std::string const name = fields.take();
        fields.expect("d");
        DiodeModel model;
        while (!fields.isAtEnd()) {
            std::string const parameter = fields.take();
            fields.expect("=");
            if (parameter == "is") {
                model.diode.saturationCurrent = fields.takeNumber(positive);
            } else if (parameter == "n") {
                model.diode.emissionCoefficient = fields.takeNumber(positive);
            } else if (parameter == "rs") {
                model.seriesResistance = fields.takeNumber(notNegative);
            } else if (parameter == "cjo") {
                model.diode.junctionCapacitance = fields.takeNumber(notNegative);
            } else if (parameter == "vj") {
                model.diode.junctionPotential = fields.takeNumber(positive);
            } else if (parameter == "m") {
                model.diode.gradingCoefficient =
                    fields.takeNumber({.above = 0.0, .included = true, .below = 1.0});
            } else if (parameter == "tt") {
                fields.takeNumber({.above = 0.0, .included = true, .below = 5e-324}); // nothing but 0
            } else {
                throw Refusal{Failure::FieldNotKnown, parameter};
            }
        }
        if (!_models.emplace(name, model).second) {
            throw Refusal{Failure::NameTaken, name};
        }
    }

    Circuit _circuit;
    std::size_t _line = 0;
    bool _inControl = false;
    std::size_t _analysisLine = 0;
    std::set<std::string> _names;
    std::map<std::string, DiodeModel> _models;
    std::vector<DiodeUse> _diodes;
    std::vector<GateUse> _gates;
    std::vector<InitialVoltage> _initial;
    std::vector<ProbeUse> _probes;
};

} // namespace

Linearised Nonlinear::at(double voltage, double gateVoltage) const {
    if (auto const* const diode = std::get_if<Diode>(&device)) {
        return diode->at(voltage);
    }
    return std::get<Transistor>(device).at(voltage, gateVoltage);
}

Expected<Circuit, ErrorCode2> readNetlist(std::filesystem::path const& file, Place& place) {
    place = {file.string(), 0, 0, {}};
    std::ifstream stream(file);
    std::string text;
    if (!stream || std::filesystem::is_directory(file)) {
        return Examples::FileFailure::FileNotReadable;
    }
    if (!std::getline(stream, text)) {
        return Examples::FileFailure::FileEmpty;
    }
    Parser parser;
    try {
        for (std::size_t line = 2; std::getline(stream, text); ++line) {
            std::ranges::transform(text, text.begin(),
                                   [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; });
            if (!parser.read(text, line)) {
                break;
            }
        }
        Circuit circuit = parser.finish();
        return circuit;
    } catch (Refusal const& refusal) {
        place.line = parser.line();
        place.detail = refusal.detail;
        return refusal.failure;
    }
}

} // namespace Transient
