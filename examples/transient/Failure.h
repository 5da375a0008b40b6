#pragma once

/// @file
/// What can go wrong in this program beside files: errors of its own, of the library's kind.

#include <common/Failure.h>

#include <cstdint>

namespace Transient {

using Examples::Place;
using Tervane::System::ErrorCode2;
using Tervane::System::Expected;

/// What can be wrong with the netlist, or happen to the circuit.
enum class Failure : std::int32_t {
    LineNotKnown,
    FieldMissing,
    FieldNotKnown,
    NumberMalformed,
    ValueOutOfRange,
    NameTaken,
    ModelMissing,
    NodeMissing,
    SourceMissing,
    GateNotDriven,
    AnalysisMissing,
    ColumnsMismatch,
    NotPeriodic,
    CircuitSingular,
    ResultNotFinite,
    NotConverged,
    StepTooSmall,
    SimulatorFailed,
};

} // namespace Transient

/// Lets a Failure be returned wherever an `Expected` is.
template<>
struct Tervane::System::ErrorCodeEnumConstructor<Transient::Failure> {
    Tervane::System::ErrorCode2 operator()(Transient::Failure failure) const {
        // In the order of the enumerators.
        static Examples::TextCategory const category(
            "transient", {
                             u8"neither an element nor a command that this simulator knows",
                             u8"line ends too early",
                             u8"field is not known here",
                             u8"field is not a number",
                             u8"value is out of range",
                             u8"name is taken",
                             u8"model is missing",
                             u8"no element has this node",
                             u8"no voltage source has this name",
                             u8"the transistor's gate is not the terminal of a grounded voltage source",
                             u8"netlist asks for no transient analysis",
                             u8"column names are not as many as the netlist's quantities",
                             u8"no source repeats, so that there are no periods to compare",
                             u8"equations of the circuit are singular",
                             u8"a voltage or current is not finite",
                             u8"Newton's iteration does not converge",
                             u8"time step became too small",
                             u8"ngspice did not simulate the netlist",
                         });
        return ErrorCode2(static_cast<int>(failure), category);
    }
};
