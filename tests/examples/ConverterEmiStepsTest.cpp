// The steps of the example converter_emi, each against a result that is known in closed form.

#include <Math/Errors.h>
#include <Math/Generators.h>

#include <gtest/gtest.h>

#include <Analysis.h>
#include <Circuit.h>
#include <Emission.h>
#include <Results.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace ConverterEmi {

/// Names the window in test reports.
void PrintTo(WindowKind kind, std::ostream* stream) {
    *stream << nameOf(kind);
}

} // namespace ConverterEmi

namespace {

using namespace ConverterEmi;

constexpr double pi = std::numbers::pi;

/// Samples of offset + amplitude * cos(2 pi cycles t + phase) over the unit interval.
Vector2 cosine(std::size_t samples, double cycles, double amplitude, double phase, double offset) {
    Vector2 values(samples);
    for (std::size_t i = 0; i < samples; ++i) {
        values[i] = offset
                    + amplitude
                          * std::cos(2.0 * pi * cycles * static_cast<double>(i) / static_cast<double>(samples)
                                     + phase);
    }
    return values;
}

class EmiSpectrumWindows : public testing::TestWithParam<WindowKind> {};

TEST_P(EmiSpectrumWindows, ASineOnABinShowsItsPeakValue) {
    for (std::size_t const samples : {256U, 1000U}) {
        Vector2 const signal = cosine(samples, 20.0, 3.0, 0.7, 5.0);
        auto const spectrum = computeSpectrum(signal, makeWindow(GetParam(), samples));
        ASSERT_TRUE(spectrum);
        ASSERT_EQ(spectrum->amplitude.length(), samples / 2 + 1);
        EXPECT_NEAR(spectrum->amplitude[20], 3.0, 1e-12);
        EXPECT_NEAR(std::abs(spectrum->bin(20) - std::polar(3.0, 0.7)), 0.0, 1e-12);
        // The windows have at most three bins on either side; beyond them a whole number of cycles shows
        // nothing.
        for (std::size_t bin = 4; bin < spectrum->amplitude.length(); ++bin) {
            if (bin < 17 || bin > 23) {
                EXPECT_LT(spectrum->amplitude[bin], 1e-12) << bin;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Every, EmiSpectrumWindows,
                         testing::Values(WindowKind::None, WindowKind::Hann, WindowKind::Hamming,
                                         WindowKind::Blackman),
                         [](auto const& kind) { return std::string(nameOf(kind.param)); });

TEST(EmiSpectrum, WindowsAreThoseOfTheTextbook) {
    std::size_t const n = 64;
    Vector2 const hann = makeWindow(WindowKind::Hann, n);
    Vector2 const hamming = makeWindow(WindowKind::Hamming, n);
    Vector2 const blackman = makeWindow(WindowKind::Blackman, n);
    Vector2 const none = makeWindow(WindowKind::None, n);
    ASSERT_EQ(hann.length(), n);
    ASSERT_EQ(hamming.length(), n);
    ASSERT_EQ(blackman.length(), n);
    for (std::size_t i = 0; i < n; ++i) {
        double const x = 2.0 * pi * static_cast<double>(i) / static_cast<double>(n);
        EXPECT_NEAR(hann[i], 0.5 - 0.5 * std::cos(x), 1e-15);
        EXPECT_NEAR(hamming[i], 0.54 - 0.46 * std::cos(x), 1e-15);
        EXPECT_NEAR(blackman[i], 0.42 - 0.5 * std::cos(x) + 0.08 * std::cos(2.0 * x), 1e-15);
        EXPECT_EQ(none[i], 1.0);
    }
}

TEST(EmiSpectrum, LevelsAreThoseOfTheEffectiveValue) {
    Vector2 peak(2);
    peak[0] = std::sqrt(2.0);
    peak[1] = std::sqrt(2.0) * 1e-6;
    Vector2 const level = toDecibelMicrovolts(peak);
    EXPECT_NEAR(level[0], 120.0, 1e-12);
    EXPECT_NEAR(level[1], 0.0, 1e-12);
}

TEST(EmiSpectrum, RoundTripRebuildsOddAndEvenLengths) {
    for (std::size_t const samples : {255U, 256U}) {
        Vector2 const signal = cosine(samples, 3.3, 1.0, 0.1, 0.4);
        auto const roundTrip = rebuild(signal);
        ASSERT_TRUE(roundTrip);
        ASSERT_EQ(roundTrip->rebuilt.length(), samples);
        double largest = 0.0;
        for (std::size_t i = 0; i < samples; ++i) {
            largest = std::max(largest, std::abs(roundTrip->rebuilt[i] - signal[i]));
        }
        EXPECT_EQ(roundTrip->largestError, largest);
        EXPECT_LT(largest, 1e-14);
    }
}

TEST(EmiResampling, GridCoversAllWholePeriodsWithAPowerOfTwo) {
    // 4.5 periods in 10,000 steps; 16 samples per period of 100 kHz are 640.
    Vector2 const time = Tervane::Math::arange(10001) * 4.5e-8 + 7.0;
    Place place;
    auto const grid = chooseGrid(time, 10e3, 100e3, {}, place);
    ASSERT_TRUE(grid);
    EXPECT_EQ(grid->periods, 4U);
    EXPECT_EQ(grid->samples, 16384U) << "the record itself has 8,889 samples in four periods";
    EXPECT_NEAR(grid->duration(), 4e-4, 1e-18);
    EXPECT_EQ(grid->start, 7.0);
    EXPECT_NEAR(grid->binWidth(), 2500.0, 1e-9);
    Vector2 const times = grid->times();
    EXPECT_EQ(times[0], 7.0);
    EXPECT_LT(times[times.length() - 1], time[time.length() - 1]);
}

TEST(EmiResampling, ARecordOfExactlyItsPeriodsLosesNone) {
    // As sampled by an instrument: the last sample stands one interval before the period's end.
    for (int const samples : {100, 1000, 4096}) {
        Vector2 const time = Tervane::Math::arange(samples) * (3e-3 / samples);
        Place place;
        auto const grid = chooseGrid(time, 1e3, 10e3, {}, place);
        ASSERT_TRUE(grid);
        EXPECT_EQ(grid->periods, 3U);
    }
}

TEST(EmiResampling, StraightPiecesAreKept) {
    Vector2 time(4);
    Vector2 values(4);
    time[0] = 0.0, time[1] = 0.1e-3, time[2] = 0.4e-3, time[3] = 1e-3;
    values[0] = 0.0, values[1] = 1.0, values[2] = -2.0, values[3] = 4.0;
    Grid const grid{0.0, 1e-3 / 16.0, 16, 1};
    Vector2 const resampled = resample(grid, time, values);
    ASSERT_EQ(resampled.length(), 16U);
    EXPECT_DOUBLE_EQ(resampled[1], 0.625);
    EXPECT_DOUBLE_EQ(resampled[4], -0.5);
    EXPECT_DOUBLE_EQ(resampled[12], 1.5);
}

TEST(EmiLimitLine, BandsAreCheckedWithTheLibrarysOwnErrors) {
    EXPECT_TRUE(checkBand({9e3, 9e3}));
    EXPECT_EQ(checkBand({8999.0, 1e6}).error(), ErrorCode2(Tervane::Math::StartFrequencyTooSmall));
    EXPECT_EQ(checkBand({8999.0, 100.0}).error(), ErrorCode2(Tervane::Math::StartFrequencyTooSmall));
    EXPECT_EQ(checkBand({2e6, 1e6}).error(), ErrorCode2(Tervane::Math::StartAboveStop));
    EXPECT_EQ(checkBand({2e6, std::nan("")}).error(), ErrorCode2(Tervane::Math::StartAboveStop));
}

TEST(EmiLimitLine, IsStraightOverTheLogarithmOfTheFrequency) {
    LimitLine const line = LimitLine::builtIn({150e3, 30e6});
    Vector2 frequency(5);
    frequency[0] = 150e3, frequency[1] = std::sqrt(150e3 * 500e3), frequency[2] = 500e3, frequency[3] = 5e6,
    frequency[4] = 5.001e6;
    Vector2 const level = line.at(frequency);
    EXPECT_EQ(level[0], 56.0);
    EXPECT_NEAR(level[1], 51.0, 1e-12);
    EXPECT_EQ(level[2], 46.0);
    EXPECT_EQ(level[3], 46.0) << "at a step the level before it holds";
    EXPECT_EQ(level[4], 50.0);
}

TEST(EmiLimitLine, BelowTheUsualStartTheLowerFrequenciesHaveLimitsToo) {
    LimitLine const line = LimitLine::builtIn({9e3, 30e6});
    Vector2 frequency(4);
    frequency[0] = 9e3, frequency[1] = 60e3, frequency[2] = 149e3, frequency[3] = 200e3;
    Vector2 const level = line.at(frequency);
    EXPECT_EQ(level[0], 110.0);
    EXPECT_NEAR(level[1], 90.0 - 10.0 * std::log(60.0 / 50.0) / std::log(3.0), 1e-12);
    EXPECT_NEAR(level[2], 80.0, 0.1);
    EXPECT_NEAR(level[3], 56.0 - 10.0 * std::log(200.0 / 150.0) / std::log(500.0 / 150.0), 1e-12);
}

TEST(EmiLimitLine, WithinABandItKeepsTheCornersBetweenTheEnds) {
    LimitLine const part = LimitLine::builtIn({150e3, 30e6}).within({5e6, 10e6});
    ASSERT_EQ(part.frequency().length(), 3U) << "the step at 5 MHz has both its levels";
    EXPECT_EQ(part.frequency()[0], 5e6);
    EXPECT_EQ(part.level()[0], 46.0);
    EXPECT_EQ(part.frequency()[1], 5e6);
    EXPECT_EQ(part.level()[1], 50.0);
    EXPECT_EQ(part.frequency()[2], 10e6);
    EXPECT_EQ(part.level()[2], 50.0);
    EXPECT_EQ(LimitLine::builtIn({150e3, 30e6}).within({4e6, 10e6}).frequency().length(), 4U);
}

TEST(EmiInputFilter, ADividerFollowsOhmsLaw) {
    // 1 A into 10 ohm beside the chain of 40 ohm and the receiver's 50 ohm.
    Network const network{.nodes = 2,
                          .source = 0,
                          .receiver = 1,
                          .branches = {{.from = 0, .to = Branch::ground, .resistance = 10.0},
                                       {.from = 0, .to = 1, .resistance = 40.0},
                                       {.from = 1, .to = Branch::ground, .resistance = 50.0}}};
    auto const impedance = network.transferImpedance(1e6);
    ASSERT_TRUE(impedance);
    EXPECT_NEAR(std::abs(*impedance - 5.0), 0.0, 1e-14);
}

TEST(EmiInputFilter, ALowPassHasItsComplexTransferImpedance) {
    double const inductance = 10e-6;
    double const capacitance = 1e-6;
    Network const network{.nodes = 2,
                          .source = 0,
                          .receiver = 1,
                          .branches = {{.from = 0, .to = Branch::ground, .capacitance = capacitance},
                                       {.from = 0, .to = 1, .inductance = inductance},
                                       {.from = 1, .to = Branch::ground, .resistance = receiverResistance}}};
    for (double const frequency : {9e3, 50329.0, 150e3, 1e6, 30e6}) {
        double const omega = 2.0 * pi * frequency;
        std::complex<double> const series(receiverResistance, omega * inductance);
        std::complex<double> const shunt(0.0, -1.0 / (omega * capacitance));
        std::complex<double> const expected = receiverResistance * shunt / (shunt + series);
        auto const impedance = network.transferImpedance(frequency);
        ASSERT_TRUE(impedance);
        EXPECT_LT(std::abs(*impedance - expected), 1e-12 * std::abs(expected)) << frequency;

        auto const loss = insertionLoss(network, Vector2(1, frequency));
        ASSERT_TRUE(loss);
        EXPECT_NEAR((*loss)[0], 20.0 * std::log10(receiverResistance / std::abs(expected)), 1e-10);
    }
}

TEST(EmiInputFilter, ANodeWithoutBranchesHasNoVoltage) {
    Network const network{.nodes = 2,
                          .source = 0,
                          .receiver = 1,
                          .branches = {{.from = 0, .to = Branch::ground, .resistance = 10.0}}};
    auto const impedance = network.transferImpedance(1e6);
    ASSERT_FALSE(impedance);
    EXPECT_EQ(impedance.error(), ErrorCode2(Tervane::Math::SolutionNotComputed));
}

Impedance impedanceOf(SeriesModel const& model, std::size_t harmonics) {
    Impedance impedance;
    for (std::size_t order = 1; order <= harmonics; ++order) {
        impedance.frequency.push_back(static_cast<double>(order) * 400e3);
        impedance.value.push_back(model.impedance(impedance.frequency.back()));
    }
    return impedance;
}

TEST(EmiCapacitorFit, FindsAModelThatFitsExactly) {
    SeriesModel const truth{6e-3, 1.2e-9, 22e-6};
    for (std::size_t const harmonics : {2U, 5U, 40U}) {
        auto const fit = fitFreely(impedanceOf(truth, harmonics));
        ASSERT_TRUE(fit);
        EXPECT_NEAR(fit->model.resistance, truth.resistance, 1e-12 * truth.resistance);
        EXPECT_NEAR(fit->model.inductance, truth.inductance, 1e-11 * truth.inductance);
        EXPECT_NEAR(fit->model.capacitance, truth.capacitance, 1e-11 * truth.capacitance);
        EXPECT_LT(fit->rmsResidual, 1e-14);
    }
}

TEST(EmiCapacitorFit, HoldsTheCapacitanceExactly) {
    SeriesModel const truth{6e-3, 1.2e-9, 22e-6};
    Impedance const impedance = impedanceOf(truth, 5);
    double const held = 20e-6; // not the model's own
    auto const fit = fitWithCapacitance(impedance, held);
    ASSERT_TRUE(fit);
    EXPECT_NEAR(fit->model.capacitance, held, 4e-16 * held);
    EXPECT_NEAR(fit->model.resistance, truth.resistance, 1e-12 * truth.resistance);

    // With the capacitance fixed, the least-squares inductance is that of a line through the origin.
    double numerator = 0.0;
    double denominator = 0.0;
    for (std::size_t i = 0; i < impedance.frequency.size(); ++i) {
        double const omega = 2.0 * pi * impedance.frequency[i];
        numerator += omega * (impedance.value[i].imag() + 1.0 / (omega * held));
        denominator += omega * omega;
    }
    EXPECT_NEAR(fit->model.inductance, numerator / denominator, 1e-11 * truth.inductance);

    auto const freeFit = fitFreely(impedance);
    ASSERT_TRUE(freeFit);
    EXPECT_GT(fit->rmsResidual, freeFit->rmsResidual);
}

TEST(EmiCapacitorFit, ImpedanceIsTheQuotientAtTheHarmonics) {
    std::size_t const samples = 512;
    std::size_t const periods = 8;
    Vector2 const window = makeWindow(WindowKind::Hann, samples);
    auto const voltage = computeSpectrum(cosine(samples, 8.0, 2.0, 1.0, 0.0), window);
    auto const current = computeSpectrum(cosine(samples, 8.0, 4.0, 0.5, 0.0), window);
    ASSERT_TRUE(voltage);
    ASSERT_TRUE(current);
    Place place;
    auto const impedance = measureImpedance(*voltage, *current, 400e3, periods, 1, place);
    ASSERT_TRUE(impedance);
    EXPECT_EQ(impedance->frequency, std::vector<double>{400e3});
    EXPECT_NEAR(std::abs(impedance->value[0] - std::polar(0.5, 0.5)), 0.0, 1e-12);

    EXPECT_EQ(measureImpedance(*voltage, *current, 400e3, periods, 33, place).error(),
              ErrorCode2(Failure::NoCapacitorCurrent))
        << "harmonic 33 lies beyond the spectrum";
}

TEST(EmiReport, ManyHarmonicsStillGiveAtMostSixtyLines) {
    Analysis analysis;
    analysis.grid = {0.0, 1e-9, 1000, 1};
    analysis.unit = "V";
    for (std::size_t order = 1; order <= 500; ++order) {
        double const frequency = static_cast<double>(order) * 100e3;
        analysis.harmonics.push_back({order, frequency, 1.0, 110.0, 80.0, 30.0, 50.0});
    }
    analysis.capacitor = CapacitorAnalysis{{{1e5}, {1.0}}, {}, {}};
    std::string const report = formatReport({}, analysis, {"a.csv"});
    EXPECT_LE(std::ranges::count(report, '\n'), 60);
    EXPECT_NE(report.find("least margins of 500"), std::string::npos);
}

} // namespace
