// The example transient: netlists and their refusals, linear circuits against closed forms, both forms of
// Newton's method against each other, and what an iteration takes from the heap.

#include "kit/Allocations.h"
#include "kit/Policies.h"

#include <Math/BLAS.h>
#include <Math/Index.h>
#include <Math/Interpolation.h>

#include <gtest/gtest.h>

#include <converter_emi/Circuit.h>
#include <sys/wait.h>
#include <transient/Comparison.h>
#include <transient/Gear.h>
#include <transient/Ngspice.h>
#include <transient/SmallSignal.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <numbers>
#include <regex>

namespace {

namespace fs = std::filesystem;
using namespace Transient;

/// Writes netlists into a folder of the test's own.
class TransientExample : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "transient-test-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
    }
    void TearDown() override { fs::remove_all(folder); }

    fs::path netlist() const { return folder / "circuit.cir"; }

    Expected<Circuit, ErrorCode2> read(std::string const& text) {
        std::ofstream(netlist()) << text;
        return readNetlist(netlist(), place);
    }

    /// A circuit, simulated until 10 us from 0 on, with the probe v(out).
    Circuit circuitOf(std::string const& elements, std::string const& reltol = "1e-3",
                      std::string const& maxStep = "50n") {
        auto circuit = read("title\n" + elements + "\n.options method=gear reltol=" + reltol
                            + " vntol=1e-9 abstol=1e-12\n.control\ntran " + maxStep + " 10u 0 " + maxStep
                            + " uic\nwrdata out.txt v(out)\n.endc\n.end\n");
        EXPECT_TRUE(circuit) << (circuit ? "" : describe(place, circuit.error()));
        return circuit ? *circuit : Circuit{};
    }

    /// The largest deviation of the first probe from @p exact, in all forms and at every step.
    double deviation(Circuit const& circuit, std::function<double(double)> const& exact) {
        double worst = 0.0;
        for (NewtonForm const form : {NewtonForm::Whole, NewtonForm::Ports}) {
            auto const simulation = simulate(
                circuit, form, [](double) {}, place);
            EXPECT_TRUE(simulation) << (simulation ? "" : describe(place, simulation.error()));
            if (!simulation || simulation->waveforms.time.length() < 20) {
                return HUGE_VAL;
            }
            auto const& [time, values] = simulation->waveforms;
            EXPECT_EQ(time.back(), circuit.analysis.stop);
            for (std::size_t i = 0; i < time.length(); ++i) {
                worst = std::max(worst, std::abs(values[0][i] - exact(time[i])));
            }
        }
        return worst;
    }

    /// The converter of the main example, over a shorter time.
    std::string converter(std::string const& start, std::string const& stop) {
        std::ifstream stream(TRANSIENT_NETLIST);
        std::string const text(std::istreambuf_iterator<char>(stream), {});
        return std::regex_replace(text, std::regex("tran 15n 1.401m 1.2m"), "tran 15n " + stop + " " + start);
    }

    fs::path folder;
    Place place;
};

// Netlists

TEST_F(TransientExample, ReadsTheConverter) {
    auto const circuit = read(converter("1.2m", "1.401m"));
    ASSERT_TRUE(circuit) << describe(place, circuit.error());
    EXPECT_EQ(circuit->nodes.size(), 21U);     // with the diode's inner one
    EXPECT_EQ(circuit->resistors.size(), 11U); // with the diode's
    EXPECT_EQ(circuit->capacitors.size(), 8U);
    EXPECT_EQ(circuit->inductors.size(), 6U);
    EXPECT_EQ(circuit->sources.size(), 4U);
    EXPECT_EQ(circuit->nonlinear.size(), 2U);
    EXPECT_EQ(circuit->probes.size(), 4U);
    EXPECT_DOUBLE_EQ(circuit->analysis.reltol, 1e-3);
    EXPECT_DOUBLE_EQ(circuit->analysis.vntol, 1e-5);
    EXPECT_DOUBLE_EQ(circuit->analysis.maxStep, 15e-9);
    EXPECT_DOUBLE_EQ(circuit->analysis.start, 1.2e-3);
    EXPECT_DOUBLE_EQ(circuit->analysis.stop, 1.401e-3);
    EXPECT_EQ(circuit->inductors[4].initialCurrent, 2.0);
    EXPECT_EQ(NodalEquations(*circuit).order(), 31U);
}

TEST_F(TransientExample, ReadsNumbersWithScaleFactorsAndUnits) {
    auto const circuit =
        read("title\nR1 a 0 1.5Meg\nR2 a 0 2kohm\nR3 a 0 3e-3\nR4 a 0 4m\nC1 a 0 10uF\nC2 a 0 "
             "20p\nL1 a 0 5n\n.tran 1n 1u uic\n.end\n");
    ASSERT_TRUE(circuit) << describe(place, circuit.error());
    EXPECT_DOUBLE_EQ(circuit->resistors[0].resistance, 1.5e6);
    EXPECT_DOUBLE_EQ(circuit->resistors[1].resistance, 2e3);
    EXPECT_DOUBLE_EQ(circuit->resistors[2].resistance, 3e-3);
    EXPECT_DOUBLE_EQ(circuit->resistors[3].resistance, 4e-3);
    EXPECT_DOUBLE_EQ(circuit->capacitors[0].capacitance, 10e-6);
    EXPECT_DOUBLE_EQ(circuit->capacitors[1].capacitance, 20e-12);
    EXPECT_DOUBLE_EQ(circuit->inductors[0].inductance, 5e-9);
}

struct Refused {
    char const* name;
    char const* text;
    char const* message; ///< behind the file's name
};

void PrintTo(Refused const& refused, std::ostream* stream) {
    *stream << refused.name;
}

class TransientRefusal : public TransientExample, public testing::WithParamInterface<Refused> {};

TEST_P(TransientRefusal, NamesTheLine) {
    auto const circuit = read(std::string("title\n") + GetParam().text + "\n.tran 1n 1u uic\n.end\n");
    ASSERT_FALSE(circuit);
    EXPECT_EQ(describe(place, circuit.error()), netlist().string() + ":" + GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, TransientRefusal,
    testing::Values(
        Refused{"UnknownElement", "R1 a 0 1\nQ1 a b 0 model",
                "3: neither an element nor a command that this simulator knows (q1)"},
        Refused{"UnknownCommand", "R1 a 0 1\n\n.noise v(a) V1",
                "4: neither an element nor a command that this simulator knows (.noise)"},
        Refused{"ContinuedLine", "R1 a 0\n+ 1", "2: line ends too early"},
        Refused{"NoNumber", "R1 a 0 big", "2: field is not a number (big)"},
        Refused{"UnitThatIsNone", "R1 a 0 5%", "2: field is not a number (5%)"},
        Refused{"NotPositive", "* comment\nC1 a 0 0", "3: value is out of range (0)"},
        Refused{"SurplusField", "L1 a 0 1u 2u", "2: field is not known here (2u)"},
        Refused{"NameTaken", "R1 a 0 1\nr1 b 0 1", "3: name is taken (r1)"},
        Refused{"NoModel", "D1 0 a fast\nR1 a 0 1", "2: model is missing (fast)"},
        Refused{"ModelParameter", ".model d D(IS=1u BV=50)", "2: field is not known here (bv)"},
        Refused{"StoredCharge", ".model d D(TT=5n)", "2: value is out of range (5n)"},
        Refused{"PulseJumps", "V1 a 0 PULSE(0 1 0 0 1n 5n 10n)", "2: value is out of range (0)"},
        Refused{"PulseLongerThanItsPeriod", "V1 a 0 PULSE(0 1 0 1n 1n 9n 10n)",
                "2: value is out of range (10n)"},
        Refused{"Sine", "V1 a 0 SIN(0 1 1k)", "2: field is not a number (sin)"},
        Refused{
            "OtherCurrent", "B1 a 0 I=v(a)*v(a)",
            "2: field is not known here (a current is known as I=v(D,S)*G*10^(-K*(1-v(GATE))) from D to S "
            "only)"},
        Refused{"GateNotDriven", "R1 g 0 1\nB1 a 0 I=v(a,0)*1*10^(-2*(1-v(g)))",
                "3: the transistor's gate is not the terminal of a grounded voltage source"},
        Refused{"InitialNode", "R1 a 0 1\n.ic v(b)=1", "3: no element has this node (b)"},
        Refused{"Method", ".options method=trap", "2: field is not known here (trap where gear belongs)"},
        Refused{"Option", ".options gmin=1e-9", "2: field is not known here (gmin)"},
        Refused{"ControlCommand", ".control\nplot v(a)\n.endc",
                "3: neither an element nor a command that this simulator knows (plot)"},
        Refused{"ProbeSource", "R1 a 0 1\n.control\nwrdata x.txt i(V1)\n.endc",
                "4: no voltage source has this name (v1)"},
        Refused{"TooManySteps", ".tran 1p 1 uic", "2: value is out of range (too many steps)"},
        Refused{"TooManyPeriods", "V1 a 0 PULSE(0 1 0 1f 1f 1f 5f)",
                "3: value is out of range (too many periods of v1)"},
        Refused{"NotFinite", "R1 a 0 inf", "2: value is out of range (inf)"},
        Refused{"OperatingPointFirst", ".tran 1n 1u", "2: line ends too early"}),
    [](auto const& refused) { return std::string(refused.param.name); });

TEST_F(TransientExample, RefusesALineThatNobodyWrote) {
    auto const circuit = read("title\nR1 " + std::string(1 << 20, 'a') + " 0 1\n");
    ASSERT_FALSE(circuit);
    EXPECT_EQ(describe(place, circuit.error()),
              netlist().string() + ":2: value is out of range (line too long)");
}

TEST_F(TransientExample, RefusesWhatIsNoFile) {
    auto const absent = readNetlist(folder / "absent.cir", place);
    ASSERT_FALSE(absent);
    EXPECT_EQ(absent.error(), ErrorCode2(Examples::FileFailure::FileNotReadable));
    auto const directory = readNetlist(folder, place);
    ASSERT_FALSE(directory);
    EXPECT_EQ(directory.error(), ErrorCode2(Examples::FileFailure::FileNotReadable));
    auto const empty = read("");
    ASSERT_FALSE(empty);
    EXPECT_EQ(empty.error(), ErrorCode2(Examples::FileFailure::FileEmpty));
}

TEST_F(TransientExample, RefusesANetlistWithoutAnalysis) {
    auto const circuit = read("title\nR1 a 0 1\n.end\n");
    ASSERT_FALSE(circuit);
    EXPECT_EQ(describe(place, circuit.error()),
              netlist().string() + ": netlist asks for no transient analysis");
}

// Linear circuits against closed forms

TEST_F(TransientExample, ACapacitorChargesExponentially) {
    double const tau = 1e3 * 1e-9;
    auto const exact = [&](double time) {
        return 5.0 * (1.0 - std::exp(-time / tau));
    };
    std::string const elements = "V1 in 0 DC 5\nR1 in out 1k\nC1 out 0 1n";
    double const coarse = deviation(circuitOf(elements, "1e-3", "1u"), exact);
    double const fine = deviation(circuitOf(elements, "1e-6", "1u"), exact);
    EXPECT_LT(coarse, 5.0 * 1e-2);
    EXPECT_LT(fine, 5.0 * 1e-4);
    EXPECT_LT(fine, coarse / 20.0);
}

TEST_F(TransientExample, ARampThroughAnRCLowPassLags) {
    // Up to the pulse's first corner, 5 us; v = s (t - tau (1 - exp(-t / tau))).
    double const tau = 200e-9;
    double const slope = 1.0 / 5e-6;
    Circuit circuit = circuitOf("V1 in 0 PULSE(0 1 0 5u 1u 10u 20u)\nR1 in out 200\nC1 out 0 1n", "1e-6");
    circuit.analysis.stop = 5e-6;
    EXPECT_LT(
        deviation(circuit, [&](double time) { return slope * (time - tau * (1.0 - std::exp(-time / tau))); }),
        1e-5);
}

TEST_F(TransientExample, ASeriesResonantCircuitRings) {
    // 1 uH and 1 nF at 10 ohm: an angular frequency of 31 per microsecond, a damping of 5 per microsecond.
    double const damping = 10.0 / (2.0 * 1e-6);
    double const frequency = std::sqrt(1.0 / (1e-6 * 1e-9) - damping * damping);
    auto const exact = [&](double time) {
        return 1.0
               - std::exp(-damping * time)
                     * (std::cos(frequency * time) + damping / frequency * std::sin(frequency * time));
    };
    std::string const elements = "V1 in 0 1\nR1 in a 10\nL1 a out 1u\nC1 out 0 1n";
    double const coarse = deviation(circuitOf(elements, "1e-3"), exact);
    double const fine = deviation(circuitOf(elements, "1e-6"), exact);
    EXPECT_LT(coarse, 3e-2);
    EXPECT_LT(fine, 3e-4);
    EXPECT_LT(fine, coarse / 20.0);
}

TEST_F(TransientExample, InitialConditionsComeFromElementsAndNodes) {
    // The capacitor's own value counts before that of its nodes; an inductor's current decays with L / R.
    EXPECT_LT(deviation(circuitOf("R1 out 0 1k\nC1 out 0 1n IC=3\n.ic v(out)=1", "1e-6"),
                        [](double time) { return 3.0 * std::exp(-time / 1e-6); }),
              2e-4);
    EXPECT_LT(deviation(circuitOf("R1 out 0 1k\nC1 out 0 1n\n.ic v(out)=1", "1e-6"),
                        [](double time) { return std::exp(-time / 1e-6); }),
              1e-4);
    EXPECT_LT(deviation(circuitOf("R1 out 0 10\nL1 0 out 10u IC=2", "1e-6"),
                        [](double time) { return 20.0 * std::exp(-time / 1e-6); }),
              2e-3);
}

TEST_F(TransientExample, ADiodeClampsAtItsCurve) {
    // 1 mA into the junction: v = N VT ln(1 + I / IS).
    Circuit const circuit = circuitOf("V1 in 0 1000\nR1 in out 1Meg\nD1 out 0 d\n.model d D(IS=1n N=2)");
    double const vt = 2.0 * 1.380649e-23 * 300.15 / 1.602176634e-19;
    auto const simulation = simulate(
        circuit, NewtonForm::Ports, [](double) {}, place);
    ASSERT_TRUE(simulation);
    double const volts = simulation->waveforms.values[0].back();
    EXPECT_NEAR(volts, vt * std::log1p((1000.0 - volts) / 1e6 / 1e-9), 1e-6);
}

TEST_F(TransientExample, DiodesHoldTheNodeBetweenThem) {
    // Of 2 V across two equal diodes and 1 kohm, both forms give each diode the same share.
    Circuit const circuit = circuitOf("V1 in 0 2\nR1 in out 1k\nD1 out mid d\nD2 mid 0 d\n.model d D(IS=1n)\n"
                                      "C1 out 0 1p");
    double const vt = 1.380649e-23 * 300.15 / 1.602176634e-19;
    for (NewtonForm const form : {NewtonForm::Whole, NewtonForm::Ports}) {
        auto const simulation = simulate(
            circuit, form, [](double) {}, place);
        ASSERT_TRUE(simulation) << describe(place, simulation.error());
        double const volts = simulation->waveforms.values[0].back();
        EXPECT_NEAR(volts, 2.0 * vt * std::log1p((2.0 - volts) / 1e3 / 1e-9), 1e-6);
    }
}

TEST_F(TransientExample, TheDepletionChargeIsTheIntegralOfTheCapacitance) {
    Diode const diode{.saturationCurrent = 1e-6,
                      .emissionCoefficient = 1.05,
                      .junctionCapacitance = 250e-12,
                      .junctionPotential = 0.4,
                      .gradingCoefficient = 0.45};
    EXPECT_EQ(diode.at(0.0).charge, 0.0);
    EXPECT_EQ(diode.at(0.0).capacitance, 250e-12);
    for (double const voltage : {-24.0, -1.0, -0.1, 0.1, 0.1999, 0.2, 0.2001, 0.3, 0.45}) {
        double const h = 1e-5;
        double const slope = (diode.at(voltage + h).charge - diode.at(voltage - h).charge) / (2.0 * h);
        EXPECT_NEAR(slope / diode.at(voltage).capacitance, 1.0, 1e-5) << voltage;
        double const conductance =
            (diode.at(voltage + h).current - diode.at(voltage - h).current) / (2.0 * h);
        EXPECT_NEAR(conductance / diode.at(voltage).conductance, 1.0, 1e-5) << voltage;
    }
}

// Failures while simulating

TEST_F(TransientExample, NamesTheNodeThatNothingDetermines) {
    // Of a and out, joined by a resistor and tied to nothing, one voltage is free: exactly, or up to
    // rounding.
    for (std::string const elements :
         {"V1 in 0 1\nR0 in 0 1\nR1 a out 1", "R1 a out 10\nR2 b out 3.3\nR3 a b 1.7"}) {
        Circuit const circuit = circuitOf(elements);
        for (NewtonForm const form : {NewtonForm::Whole, NewtonForm::Ports}) {
            auto const simulation = simulate(
                circuit, form, [](double) {}, place);
            ASSERT_FALSE(simulation);
            EXPECT_EQ(simulation.error(), ErrorCode2(Failure::CircuitSingular));
            EXPECT_TRUE(place.detail == "v(out) is not determined"
                        || place.detail == "v(b) is not determined")
                << place.detail;
        }
    }
}

TEST_F(TransientExample, NamesTheSourceInALoopOfSources) {
    Circuit const circuit = circuitOf("V1 out 0 1\nV2 out 0 2\nR1 out 0 1");
    auto const simulation = simulate(
        circuit, NewtonForm::Ports, [](double) {}, place);
    ASSERT_FALSE(simulation);
    EXPECT_EQ(simulation.error().message().narrow(), "equations of the circuit are singular");
    EXPECT_EQ(place.detail, "i(v2) is not determined");
}

// The converter over a short time

TEST_F(TransientExample, BothFormsOfNewtonsMethodAgree) {
    auto circuit = read(converter("0", "25u"));
    ASSERT_TRUE(circuit) << describe(place, circuit.error());
    for (double const reltol : {1e-3, 1e-5}) {
        circuit->analysis.reltol = reltol;
        auto const whole = simulate(
            *circuit, NewtonForm::Whole, [](double) {}, place);
        auto const ports = simulate(
            *circuit, NewtonForm::Ports, [](double) {}, place);
        ASSERT_TRUE(whole && ports);
        EXPECT_GT(whole->waveforms.time.length(), 1000U);
        for (std::size_t i = 0; i < circuit->probes.size(); ++i) {
            double worst = 0.0;
            for (std::size_t k = 0; k < ports->waveforms.time.length(); ++k) {
                double const other = Tervane::Math::interp(ports->waveforms.time[k], whole->waveforms.time,
                                                           whole->waveforms.values[i]);
                worst = std::max(worst, std::abs(ports->waveforms.values[i][k] - other));
            }
            EXPECT_LT(worst, 30.0 * reltol) << circuit->probes[i].name; // of volts and amperes up to 24
        }
    }
}

TEST_F(TransientExample, TheResultIsTheSameUnderEveryExecutionPolicy) {
    auto const circuit = read(converter("0", "10u"));
    ASSERT_TRUE(circuit);
    std::vector<Vector2> results;
    Tervane::Math::TestKit::forEachPolicy([&] {
        auto const simulation = simulate(
            *circuit, NewtonForm::Ports, [](double) {}, place);
        ASSERT_TRUE(simulation);
        results.push_back(simulation->waveforms.values[0]);
    });
    ASSERT_EQ(results.size(), Tervane::Math::TestKit::allPolicies.size());
    for (Vector2 const& result : results) {
        ASSERT_EQ(result.length(), results[0].length());
        EXPECT_TRUE(std::equal(result.data(), result.data() + result.length(), results[0].data()));
    }
}

/// What the heap gives for @p call.
template<class Call>
std::size_t allocations(Call const& call) {
    Tervane::Math::TestKit::AllocationCounter const counter;
    call();
    return counter.count();
}

TEST_F(TransientExample, AnIterationAllocatesNothingOfItsOwn) {
    auto const circuit = read(converter("0", "10u"));
    ASSERT_TRUE(circuit);
    NodalEquations const equations(*circuit);
    Vector2 const history(equations.order() + circuit->nonlinear.size());
    Step const step{.time = 15e-9, .leading = 1e8, .history = history};

    auto const ofSolve = [](std::size_t order) {
        Matrix2 matrix(order, order, 0.0);
        for (std::size_t i = 0; i < order; ++i) {
            matrix[Tervane::Math::Index(i, i)] = 1.0;
        }
        Vector2 b(order);
        return allocations([&] { EXPECT_TRUE(Tervane::Math::BLAS::gesv(matrix, b)); });
    };
    auto const ofStep = [&](Newton& newton, std::size_t& iterations) {
        Vector2 x(equations.order());
        return allocations([&] { iterations = newton.solve(step, x, place).value(); });
    };

    std::size_t iterations = 0;
    WholeNewton whole(*circuit, equations);
    ofStep(whole, iterations);
    EXPECT_EQ(ofStep(whole, iterations), iterations * ofSolve(equations.order()));
    EXPECT_GT(iterations, 1U);

    PortNewton ports(*circuit, equations);
    ofStep(ports, iterations); // solves for three right-hand sides
    ofStep(ports, iterations); // keeps the inverse
    EXPECT_EQ(ofStep(ports, iterations), iterations * ofSolve(circuit->nonlinear.size()));
    EXPECT_GT(iterations, 1U);
}

TEST_F(TransientExample, AgreesWithNgspice) {
    if (std::system("ngspice --version >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "ngspice is not installed";
    }
    char const* const extent = std::getenv("TVNMATH_TESTS");
    bool const isLong = extent != nullptr && std::string(extent) == "all";
    auto circuit = isLong ? read(converter("1.2m", "1.401m")) : read(converter("25u", "50.1u"));
    ASSERT_TRUE(circuit) << describe(place, circuit.error());

    TransientAnalysis tight = circuit->analysis;
    tight.reltol = 1e-6;
    tight.maxStep = 5e-9;
    auto const reference = runNgspice(netlist(), *circuit, tight, place);
    ASSERT_TRUE(reference) << describe(place, reference.error());
    PeriodGrid const grid(circuit->analysis.start, circuit->analysis.stop, 2.5e-6);
    EXPECT_EQ(grid.periods, isLong ? 80U : 10U);

    auto const differences = [&](double reltol) {
        circuit->analysis.reltol = reltol;
        auto const simulation = simulate(
            *circuit, NewtonForm::Ports, [](double) {}, place);
        EXPECT_TRUE(simulation) << describe(place, simulation.error());
        std::vector<Difference> result;
        for (std::size_t i = 0; i < 2; ++i) {
            using Tervane::Math::interp;
            auto const& ours = simulation->waveforms;
            auto const& theirs = reference->waveforms;
            result.push_back(compare(interp(grid.times, ours.time, ours.values[i]),
                                     interp(grid.times, theirs.time, theirs.values[i]), grid.periods)
                                 .value());
        }
        return result;
    };
    auto const loose = differences(1e-3);
    EXPECT_LT(std::abs(loose[1].mean), 1e-3);
    EXPECT_LT(loose[1].rms, 1e-3);
    EXPECT_LT(loose[0].largestHarmonic(), 0.2);
    auto const tighter = differences(1e-4);
    EXPECT_LT(tighter[1].rms, loose[1].rms / 2.0);
    EXPECT_LT(tighter[0].rms, loose[0].rms / 2.0);
    auto const tightest = differences(1e-6);
    // The reference's own steps leave it 1e-5 away while the output voltage still rises, a third of that
    // later.
    double const bound = isLong ? 1e-5 : 2e-5;
    EXPECT_LT(std::abs(tightest[1].mean), bound);
    EXPECT_LT(tightest[1].rms, bound);
    EXPECT_LT(tightest[0].largestHarmonic(), 2e-3);
}

// Small signals

TEST_F(TransientExample, AnRCLowPassFollowsItsTransferFunction) {
    Circuit const circuit = circuitOf("V1 in 0 0\nR1 in out 50\nC1 out 0 1n\nL1 out end 1u\nR2 end 0 1k");
    auto const linearised = SmallSignal::about(circuit, place);
    ASSERT_TRUE(linearised);
    for (double const frequency : {1e3, 1e6, 5.03e6, 1e8}) {
        std::complex<double> const s(0.0, 2.0 * std::numbers::pi * frequency);
        std::complex<double> const exact = 1.0 / (1.0 / 50.0 + s * 1e-9 + 1.0 / (s * 1e-6 + 1e3));
        auto const found = linearised->transferImpedance(1, 1, frequency);
        ASSERT_TRUE(found);
        EXPECT_LT(std::abs(*found / exact - 1.0), 1e-12);
    }
}

TEST_F(TransientExample, TheNetlistsInsertionLossIsThatOfTheMainExample) {
    auto const circuit = read(converter("0", "10u"));
    ASSERT_TRUE(circuit);
    auto const linearised = SmallSignal::about(*circuit, place);
    ASSERT_TRUE(linearised) << describe(place, linearised.error());
    auto const node = [&](char const* name) {
        return static_cast<std::size_t>(std::ranges::find(circuit->nodes, name) - circuit->nodes.begin());
    };
    Vector2 frequencies(4);
    std::ranges::copy(std::array{150e3, 1.1e6, 9.6e6, 30e6}, frequencies.data());
    auto const closed = ConverterEmi::insertionLoss(ConverterEmi::inputFilter(), frequencies);
    ASSERT_TRUE(closed);
    for (std::size_t i = 0; i < frequencies.length(); ++i) {
        auto const impedance = linearised->transferImpedance(node("cell"), node("receiver"), frequencies[i]);
        ASSERT_TRUE(impedance);
        double const loss = 20.0 * std::log10(ConverterEmi::receiverResistance / std::abs(*impedance));
        // What the closed calculation leaves out is the transistor that is off: a microsiemens.
        EXPECT_NEAR(loss, (*closed)[i], 1e-5);
    }
}

TEST_F(TransientExample, ADiodeIsLinearisedAtItsOperatingPoint) {
    Circuit const circuit =
        circuitOf("V1 in 0 10\nR1 in out 10k\nD1 out 0 d\n.model d D(IS=1n CJO=100p M=0)");
    auto const linearised = SmallSignal::about(circuit, place);
    ASSERT_TRUE(linearised) << describe(place, linearised.error());
    double const vt = 1.380649e-23 * 300.15 / 1.602176634e-19;
    double volts = 0.35;
    for (int i = 0; i < 100; ++i) {
        volts = vt * std::log1p((10.0 - volts) / 1e4 / 1e-9);
    }
    double const conductance = 1e-4 + (1e-9 * std::exp(volts / vt)) / vt + 1e-12;
    std::complex<double> const exact =
        1.0 / std::complex<double>(conductance, 2.0 * std::numbers::pi * 1e6 * 100e-12);
    auto const found = linearised->transferImpedance(1, 1, 1e6);
    ASSERT_TRUE(found);
    EXPECT_LT(std::abs(*found / exact - 1.0), 1e-4);
}

// The program

TEST_F(TransientExample, TheMainExampleReadsTheRecord) {
    std::ofstream(netlist()) << converter("50u", "75.5u");
    std::string const output = (folder / "output").string();
    auto const run = [&](std::string const& command) {
        int const status = std::system(
            (command + " >'" + (folder / "stdout").string() + "' 2>'" + (folder / "stderr").string() + "'")
                .c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    };
    auto const contentOf = [](fs::path const& file) {
        std::ifstream stream(file);
        return std::string(std::istreambuf_iterator<char>(stream), {});
    };
    std::string const program =
        std::string("'") + TRANSIENT_PROGRAM + "' --no-plots --output '" + output + "' ";
    ASSERT_EQ(run(program
                  + "--columns input_current_A output_voltage_V capacitor_current_A receiver_voltage_V "
                  + "--insertion-loss cell receiver -- '" + netlist().string() + "'"),
              0)
        << contentOf(folder / "stderr");
    EXPECT_EQ(contentOf(folder / "stderr"), "");
    std::string const report = contentOf(folder / "stdout");
    EXPECT_NE(report.find("31 unknowns: 21 nodes, 4 sources, 6 inductors; 2 nonlinear elements"),
              std::string::npos)
        << report;
    EXPECT_TRUE(contentOf(folder / "output" / "record.csv")
                    .starts_with("# circuit,circuit.cir\ntime_s,input_current_A,"));
    EXPECT_TRUE(contentOf(folder / "output" / "cost.csv").starts_with("form,steps,rejected,iterations,"));
    EXPECT_TRUE(fs::exists(folder / "output" / "insertion_loss.csv"));
    EXPECT_FALSE(fs::exists(folder / "output" / "comparison.csv"));

    ASSERT_EQ(run(std::string("'") + CONVERTER_EMI_PROGRAM + "' '" + output + "/record.csv' --no-plots "
                  + "--capacitor output_voltage_V capacitor_current_A --output '" + output + "/emi'"),
              0)
        << contentOf(folder / "stderr");
    EXPECT_NE(contentOf(folder / "stdout").find("10 switching periods at 400.000 kHz"), std::string::npos);

    // What it refuses leaves the last results in place, and says the line.
    std::ofstream(netlist()) << "title\nQ1 a b c d\n";
    EXPECT_EQ(run(program + "'" + netlist().string() + "'"), 1);
    EXPECT_EQ(contentOf(folder / "stdout"), "");
    EXPECT_EQ(contentOf(folder / "stderr"),
              "transient: " + netlist().string()
                  + ":2: neither an element nor a command that this simulator knows (q1)\n");
    EXPECT_TRUE(fs::exists(folder / "output" / "record.csv"));
}

} // namespace
