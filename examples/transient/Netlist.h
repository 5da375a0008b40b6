#pragma once

/// @file
/// A circuit as a netlist describes it, in the subset of SPICE's language that this simulator knows.

#include "Devices.h"
#include "Failure.h"

#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace Transient {

/// A node's number; ground has none.
inline constexpr int ground = -1;

/// The two nodes of an element. Its voltage counts from `from` to `to`, its current flows that way through
/// it.
struct Branch {
    int from = ground;
    int to = ground;
};

struct Resistor {
    Branch branch;
    double resistance; ///< ohm, positive
};

struct Capacitor {
    Branch branch;
    double capacitance;                   ///< F, positive
    std::optional<double> initialVoltage; ///< V; otherwise that of its nodes
};

struct Inductor {
    std::string name;
    Branch branch;
    double inductance;     ///< H, positive
    double initialCurrent; ///< A
};

struct VoltageSource {
    std::string name;
    Branch branch;
    Waveform waveform;
};

/// A nonlinear element, see Devices.h.
struct Nonlinear {
    Branch branch;
    int gate = ground; ///< the node whose voltage controls a transistor
    std::variant<Diode, Transistor> device;

    /// The device about a voltage across its branch and one at its gate.
    Linearised at(double voltage, double gateVoltage) const;
};

/// A quantity that the netlist asks for: `v(NODE)` or `i(SOURCE)`.
struct Probe {
    std::string name;
    bool isCurrent;
    std::size_t index; ///< of the node, or of the source among the voltage sources
};

/// `tran`, and `.options`: how the netlist wants to be simulated.
struct TransientAnalysis {
    double start = 0.0;    ///< s, from where on results are kept
    double stop = 0.0;     ///< s
    double maxStep = 0.0;  ///< s
    double reltol = 1e-3;  ///< relative tolerance
    double vntol = 1e-6;   ///< V, absolute tolerance of voltages
    double abstol = 1e-12; ///< A, absolute tolerance of currents
};

struct Circuit {
    std::vector<std::string> nodes; ///< names; the number of a node is its place here
    std::vector<Resistor> resistors;
    std::vector<Capacitor> capacitors;
    std::vector<Inductor> inductors;
    std::vector<VoltageSource> sources;
    std::vector<Nonlinear> nonlinear;
    std::vector<double> initialVoltages; ///< V, for each node
    TransientAnalysis analysis;
    std::vector<Probe> probes;
};

/// Reads a netlist.
///
/// Known are the elements R, L, C (with `IC=`), V (a number, `DC` or `PULSE`), D, and a transistor as a
/// source B of the form `I=v(D,S)*G*10^(-K*(1-v(GATE)))`; `.model NAME D(…)` with IS, N, RS, CJO, VJ, M and
/// `TT=0`; `.ic`, `.options` with `method=gear` and tolerances, `.end`, `.tran`, and between `.control` and
/// `.endc` the commands `set`, `tran … uic` and `wrdata`. Any other line is refused: @p place tells which,
/// and what is wrong. The first line is a title. Upper and lower case are the same.
Expected<Circuit, ErrorCode2> readNetlist(std::filesystem::path const& file, Place& place);

} // namespace Transient
