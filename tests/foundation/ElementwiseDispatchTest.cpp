#include "foundation/ElementwiseDispatch.h"

#include "foundation/Operations.h"
#include "kit/Bits.h"
#include "kit/ErrorBounds.h"
#include "kit/Lengths.h"
#include "kit/Policies.h"
#include "kit/SpecialValues.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <complex>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace Tervane::Math {

namespace {

using namespace Detail;
using namespace TestKit;

struct Sine {
    static constexpr ElementCost cost = ElementCost::Function;
    double operator()(double x) const { return std::sin(x); }
};

/// Knows a way through a range, and tells for how many elements it was asked to go it.
struct RangeSine : Sine {
    std::atomic<std::size_t>* inRanges;
    using Sine::operator();
    void operator()(double const* in, double* out, std::size_t n) const {
        *inRanges += n;
        for (std::size_t i = 0; i < n; ++i)
            out[i] = std::sin(in[i]);
    }
};

constexpr std::size_t streamingLimit = parallelLimit(ElementCost::Streaming);
constexpr std::size_t functionLimit = parallelLimit(ElementCost::Function);

/// Two different NaNs as operands may give either payload; everything else is exact.
std::vector<double> withoutNaNs(std::vector<double> values) {
    for (double& x : values)
        if (std::isnan(x))
            x = 2.0;
    return values;
}

template<class Op>
void expectBinary(Op op, std::vector<double> const& left, std::vector<double> const& right) {
    std::vector<double> expected(left.size());
    for (std::size_t i = 0; i < left.size(); ++i)
        expected[i] = op(left[i], right[i]);
    forEachPolicy([&] {
        Poisoned out(left.size());
        double* const end = ElementwiseDispatch::transform(left.data(), left.data() + left.size(),
                                                           right.data(), out.data(), op);
        EXPECT_EQ(end, out.data() + left.size());
        EXPECT_TRUE(sameBits(out.elements(), expected));
        EXPECT_TRUE(out.guardsAreIntact());

        std::vector<double> inPlace = left;
        ElementwiseDispatch::transform(inPlace.data(), inPlace.data() + inPlace.size(), right.data(),
                                       inPlace.data(), op);
        EXPECT_TRUE(sameBits(inPlace, expected));

        inPlace = right;
        ElementwiseDispatch::transform(left.data(), left.data() + left.size(), inPlace.data(), inPlace.data(),
                                       op);
        EXPECT_TRUE(sameBits(inPlace, expected));
    });
}

TEST(ElementwiseDispatch, ComputesTwoOperandsAlikeUnderEveryPolicy) {
    for (std::size_t const n : awkwardLengthsAround(streamingLimit)) {
        SCOPED_TRACE("length " + std::to_string(n));
        std::vector<double> const left = specialValues(n);
        std::vector<double> const right = withoutNaNs(specialValues(n, 5));
        expectBinary(Add(), left, right);
        expectBinary(Subtract(), left, right);
        expectBinary(Multiply(), left, right);
        expectBinary(Divide(), left, right);
    }
}

TEST(ElementwiseDispatch, CombinesEverySpecialValueWithEveryOther) {
    std::vector<double> const all = specialValues();
    for (double const x : all) {
        std::vector<double> const left(all.size(), x);
        std::vector<double> const right = std::isnan(x) ? withoutNaNs(all) : all;
        expectBinary(Add(), left, right);
        expectBinary(Subtract(), left, right);
        expectBinary(Multiply(), left, right);
        expectBinary(Divide(), left, right);
    }
}

TEST(ElementwiseDispatch, ComputesOneOperandAlikeUnderEveryPolicy) {
    for (std::size_t const n : awkwardLengthsAround(functionLimit)) {
        std::vector<double> const in = valuesByBitPattern(n);
        std::vector<double> expected(n);
        for (std::size_t i = 0; i < n; ++i)
            expected[i] = std::sin(in[i]);
        forEachPolicy([&] {
            Poisoned out(n);
            EXPECT_EQ(ElementwiseDispatch::transform(in.data(), in.data() + n, out.data(), Sine()),
                      out.data() + n);
            EXPECT_TRUE(sameBits(out.elements(), expected));
            EXPECT_TRUE(out.guardsAreIntact());
            std::vector<double> inPlace = in;
            ElementwiseDispatch::transform(inPlace.data(), inPlace.data() + n, inPlace.data(), Sine());
            EXPECT_TRUE(sameBits(inPlace, expected));
        });
    }
}

TEST(ElementwiseDispatch, GivesWholeRangesToAnOperationThatTakesThem) {
    for (std::size_t const n : awkwardLengthsAround(functionLimit)) {
        std::vector<double> const in = valuesByBitPattern(n);
        std::vector<double> expected(n);
        for (std::size_t i = 0; i < n; ++i)
            expected[i] = std::sin(in[i]);
        for (AlgorithmExecutionPolicy const policy : allPolicies) {
            PolicyScope const scope(policy);
            std::atomic<std::size_t> inRanges{0};
            Poisoned out(n);
            EXPECT_EQ(ElementwiseDispatch::transform(in.data(), in.data() + n, out.data(),
                                                     RangeSine{{}, &inRanges}),
                      out.data() + n);
            EXPECT_TRUE(sameBits(out.elements(), expected)) << policy;
            EXPECT_TRUE(out.guardsAreIntact());
            // The standard serial algorithm goes element by element.
            EXPECT_EQ(inRanges, policy == Sequenced ? 0 : n) << policy;
        }
    }
}

TEST(ElementwiseDispatch, NegatesByTheSignBitAlone) {
    std::vector<double> const in = specialValues();
    std::vector<double> expected;
    for (double const x : in)
        expected.push_back(fromBits(bitsOf(x) ^ 0x8000000000000000));
    forEachPolicy([&] {
        std::vector<double> out(in.size());
        ElementwiseDispatch::transform(in.data(), in.data() + in.size(), out.data(), Negate());
        EXPECT_TRUE(sameBits(out, expected));
    });
}

TEST(ElementwiseDispatch, BindsScalarsOnEitherSide) {
    std::vector<double> const in = ordinaryValues(100);
    std::vector<double> right, left;
    for (double const x : in) {
        right.push_back(x - 3.0);
        left.push_back(3.0 / x);
    }
    forEachPolicy([&] {
        std::vector<double> out(in.size());
        ElementwiseDispatch::transform(in.data(), in.data() + 100, out.data(),
                                       WithRightScalar<Subtract>{3.0});
        EXPECT_TRUE(sameBits(out, right));
        ElementwiseDispatch::transform(in.data(), in.data() + 100, out.data(), WithLeftScalar<Divide>{3.0});
        EXPECT_TRUE(sameBits(out, left));
    });
}

TEST(ElementwiseDispatch, TakesAnyMisalignment) {
    for (std::size_t inOffset = 0; inOffset < 8; ++inOffset)
        for (std::size_t outOffset = 0; outOffset < 8; ++outOffset)
            forEachPolicy([&] {
                Poisoned in(37, inOffset), out(37, outOffset);
                std::vector<double> expected(37);
                for (std::size_t i = 0; i < 37; ++i) {
                    in.data()[i] = static_cast<double>(i);
                    expected[i] = 2.0 * static_cast<double>(i);
                }
                ElementwiseDispatch::transform(in.data(), in.data() + 37, in.data(), out.data(), Add());
                EXPECT_TRUE(sameBits(out.elements(), expected));
                EXPECT_TRUE(out.guardsAreIntact() && in.guardsAreIntact());
            });
}

TEST(ElementwiseDispatch, DoesNothingForNoElements) {
    forEachPolicy([] {
        double* const nothing = nullptr;
        EXPECT_EQ(ElementwiseDispatch::transform(nothing, nothing, nothing, Negate()), nullptr);
        EXPECT_EQ(ElementwiseDispatch::transform(nothing, nothing, nothing, nothing, Add()), nullptr);
        EXPECT_EQ(ElementwiseDispatch::fill(nothing, nothing, 1.0), nullptr);
        EXPECT_TRUE(sameBits(ElementwiseDispatch::sum(nothing, nothing), 0.0));
    });
}

/// One element at a time, from the first to the last; volatile, so that nothing is reordered.
void addInOrder(double const* in1, double const* in2, double* out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        double const volatile sum = in1[i] + in2[i];
        const_cast<double volatile*>(out)[i] = sum;
    }
}

TEST(ElementwiseDispatch, KeepsTheOrderWhereTheOutputOverlapsAnInputPartly) {
    PolicyScope const scope(Inline);
    for (std::size_t const n : std::initializer_list<std::size_t>{1, 7, 8, 9, 40, 100})
        for (std::size_t distance = 0; distance <= 16; ++distance) {
            SCOPED_TRACE("length " + std::to_string(n) + ", distance " + std::to_string(distance));
            std::vector<double> const start = ordinaryValues(n + 16);
            std::vector<double> const other = ordinaryValues(n, 2);

            // The output behind the input: each result is read again as an input further on.
            std::vector<double> actual = start, expected = start;
            ElementwiseDispatch::transform(actual.data(), actual.data() + n, other.data(),
                                           actual.data() + distance, Add());
            addInOrder(expected.data(), other.data(), expected.data() + distance, n);
            EXPECT_TRUE(sameBits(actual, expected));

            // The output before the input, which is the second operand.
            actual = start, expected = start;
            ElementwiseDispatch::transform(other.data(), other.data() + n, actual.data() + distance,
                                           actual.data(), Add());
            addInOrder(other.data(), expected.data() + distance, expected.data(), n);
            EXPECT_TRUE(sameBits(actual, expected));

            // One operand.
            actual = start, expected = start;
            ElementwiseDispatch::transform(actual.data(), actual.data() + n, actual.data() + distance,
                                           WithRightScalar<Add>{1.0});
            std::vector<double> const ones(n, 1.0);
            addInOrder(expected.data(), ones.data(), expected.data() + distance, n);
            EXPECT_TRUE(sameBits(actual, expected));
        }
}

TEST(ElementwiseDispatch, KeepsTheOrderOfTheWholeRangeUnderEveryPolicy) {
    std::size_t const n = 4 * streamingLimit;
    std::vector<double> const start = ordinaryValues(2 * n);
    std::vector<double> const other = ordinaryValues(n, 2);
    // From neighbours to ranges that overlap by their last cache line; between these, chunks that overlap
    // others.
    for (std::size_t const distance : {std::size_t{1}, std::size_t{8}, n / 16, n / 4, n / 2, n - 8})
        forEachPolicy([&] {
            SCOPED_TRACE("distance " + std::to_string(distance));
            std::vector<double> actual = start, expected = start;
            ElementwiseDispatch::transform(actual.data(), actual.data() + n, other.data(),
                                           actual.data() + distance, Add());
            addInOrder(expected.data(), other.data(), expected.data() + distance, n);
            EXPECT_TRUE(sameBits(actual, expected));

            // In place, with a second operand that begins further on.
            actual = start, expected = start;
            ElementwiseDispatch::transform(actual.data(), actual.data() + n, actual.data() + distance,
                                           actual.data(), Add());
            addInOrder(expected.data(), expected.data() + distance, expected.data(), n);
            EXPECT_TRUE(sameBits(actual, expected));

            actual = start, expected = start;
            ElementwiseDispatch::transform(actual.data(), actual.data() + n, actual.data() + distance,
                                           WithRightScalar<Add>{1.0});
            std::vector<double> const ones(n, 1.0);
            addInOrder(expected.data(), ones.data(), expected.data() + distance, n);
            EXPECT_TRUE(sameBits(actual, expected));
        });
}

struct SumOfParts {
    static constexpr ElementCost cost = ElementCost::Streaming;
    double operator()(std::complex<double> const& z) const { return z.real() + z.imag(); }
};

// Shorter elements at the beginning of longer ones: the second half of the output takes the place of inputs
// that the first half still needs. Often, since threads that are not at work together do no harm.
TEST(ElementwiseDispatch, KeepsTheOrderWhereElementsOfAnotherSizeBeginAtTheSamePlace) {
    std::vector<double> const parts = ordinaryValues(8 * streamingLimit);
    std::size_t const n = parts.size() / 2;
    std::vector<double> expected(n);
    for (std::size_t i = 0; i < n; ++i)
        expected[i] = parts[2 * i] + parts[2 * i + 1];
    for (int repetition = 0; repetition < 20; ++repetition)
        forEachPolicy([&] {
            std::vector<double> x = parts;
            auto const* const z = reinterpret_cast<std::complex<double> const*>(x.data());
            ElementwiseDispatch::transform(z, z + n, x.data(), SumOfParts());
            x.resize(n);
            EXPECT_TRUE(sameBits(x, expected));
        });
}

TEST(ElementwiseDispatch, GivesNoRangeToAnOperationWhereTheOutputOverlapsTheInputPartly) {
    for (std::size_t const n : {std::size_t{100}, 4 * functionLimit})
        forEachPolicy([&] {
            std::atomic<std::size_t> inRanges = 0;
            std::vector<double> actual = ordinaryValues(n + 3), expected = actual;
            ElementwiseDispatch::transform(actual.data(), actual.data() + n, actual.data() + 3,
                                           RangeSine{{}, &inRanges});
            for (std::size_t i = 0; i < n; ++i)
                expected[i + 3] = std::sin(expected[i]);
            EXPECT_EQ(inRanges, 0u);
            EXPECT_TRUE(sameBits(actual, expected));
        });
}

struct ThrowAtNegative {
    static constexpr ElementCost cost = ElementCost::Function;
    double operator()(double x) const { return x < 0.0 ? throw std::out_of_range(std::to_string(x)) : x; }
};

TEST(ElementwiseDispatch, LetsAnExceptionOfTheOperationOutUnderEveryPolicy) {
    for (std::size_t const n : {std::size_t{100}, 8 * functionLimit})
        forEachPolicy([&] {
            std::vector<double> in(n, 1.0), out(n);
            in[n / 2] = -2.0;
            in[n - 1] = -1.0;
            try {
                ElementwiseDispatch::transform(in.data(), in.data() + n, out.data(), ThrowAtNegative());
                ADD_FAILURE() << "no exception";
            } catch (std::out_of_range const& e) {
                EXPECT_EQ(e.what(), std::to_string(-2.0));
            }
        });
}

TEST(ElementwiseDispatch, ComputesComplexElementsAlikeUnderEveryPolicy) {
    using Complex = std::complex<double>;
    for (std::size_t const n : awkwardLengthsAround(streamingLimit)) {
        std::vector<double> const parts = ordinaryValues(2 * n), factors = ordinaryValues(n, 2);
        auto const* const z = reinterpret_cast<Complex const*>(parts.data());
        std::vector<double> expected(2 * n);
        for (std::size_t i = 0; i < 2 * n; ++i)
            expected[i] = parts[i] * factors[i / 2];
        forEachPolicy([&] {
            std::vector<double> out(2 * n);
            ElementwiseDispatch::transform(z, z + n, factors.data(), reinterpret_cast<Complex*>(out.data()),
                                           Multiply());
            EXPECT_TRUE(sameBits(out, expected));
        });
    }
}

TEST(ElementwiseDispatch, FillsEveryElementAndNoOther) {
    for (std::size_t const n : awkwardLengthsAround(streamingLimit))
        forEachPolicy([&] {
            Poisoned out(n, 3);
            EXPECT_EQ(ElementwiseDispatch::fill(out.data(), out.data() + n, -0.0), out.data() + n);
            EXPECT_TRUE(sameBits(out.elements(), std::vector<double>(n, -0.0)));
            EXPECT_TRUE(out.guardsAreIntact());
        });
}

double sumInFourLanes(std::vector<double> const& values) {
    std::size_t const n = values.size();
    double total = 0.0;
    std::size_t i = 0;
    if (n >= 4) {
        double s[4] = {0.0, 0.0, 0.0, 0.0};
        for (; i < n / 4 * 4; ++i)
            s[i % 4] += values[i];
        total = 0.0 + ((s[0] + s[2]) + (s[1] + s[3]));
    }
    for (; i < n; ++i)
        total += values[i];
    return total;
}

TEST(ElementwiseDispatch, SumsInFourLanesUnlessParallel) {
    for (std::size_t const n : awkwardLengthsAround(streamingLimit)) {
        std::vector<double> const values = ordinaryValues(n);
        forEachPolicyOf(serialPolicies, [&] {
            EXPECT_TRUE(
                sameBits(ElementwiseDispatch::sum(values.data(), values.data() + n), sumInFourLanes(values)));
        });
    }
    EXPECT_TRUE(sameBits(sumInFourLanes({-0.0, -0.0}), 0.0));
}

/// Neighbours joined to one, their sums likewise, until there is one; an odd one waits.
double joinedInATree(std::vector<double> sums) {
    while (sums.size() > 1) {
        std::vector<double> joined;
        for (std::size_t i = 0; i + 1 < sums.size(); i += 2)
            joined.push_back(sums[i] + sums[i + 1]);
        if (sums.size() % 2 != 0)
            joined.push_back(sums.back());
        sums = std::move(joined);
    }
    return sums[0];
}

/// Elements dealt out to 32 running sums, what is left to 8, the rest one at a time.
double sumOfBlock(double const* values, std::size_t n) {
    std::size_t const dealtTo32 = n / 32 * 32, dealtTo8 = n / 8 * 8;
    std::vector<double> running(32, 0.0), joined(8, 0.0);
    for (std::size_t i = 0; i < dealtTo32; ++i)
        running[i % 32] += values[i];
    for (std::size_t lane = 0; lane < 8; ++lane)
        joined[lane] = (running[lane] + running[lane + 8]) + (running[lane + 16] + running[lane + 24]);
    for (std::size_t i = dealtTo32; i < dealtTo8; ++i)
        joined[i % 8] += values[i];
    for (std::size_t lane = 0; lane < 4; ++lane)
        joined[lane] += joined[lane + 4];
    double sum = (joined[0] + joined[2]) + (joined[1] + joined[3]);
    for (std::size_t i = dealtTo8; i < n; ++i)
        sum += values[i];
    return sum;
}

// At most 256 blocks, of 8,192 elements or, of a longer range, as often twice as many as it takes.
TEST(ElementwiseDispatch, SumsBlocksInATreeUnderTheParallelPolicies) {
    for (std::size_t const n : {0,        1,       7,       8,       31,        32,          33,
                                63,       64,      100,     8'191,   8'192,     8'193,       20'000,
                                131'071,  131'072, 131'073, 200'000, 1'000'003, 256 * 8'192, 256 * 8'192 + 1,
                                3'000'001}) {
        std::vector<double> const values = ordinaryValues(n);
        std::size_t const length = n <= 256 * 8'192 ? 8'192 : 2 * 8'192;
        std::vector<double> blocks = {sumOfBlock(values.data(), std::min(n, length))};
        for (std::size_t i = length; i < n; i += length)
            blocks.push_back(sumOfBlock(values.data() + i, std::min(length, n - i)));
        double const expected = joinedInATree(blocks);
        for (AlgorithmExecutionPolicy const policy : {Parallel, ParallelUnsequenced}) {
            PolicyScope const scope(policy);
            for (int i = 0; i < 10; ++i) // the threads take turns in another order each time
                EXPECT_TRUE(sameBits(ElementwiseDispatch::sum(values.data(), values.data() + n), expected))
                    << n;
        }
    }
}

TEST(ElementwiseDispatch, SumsWithinTheErrorBoundInParallel) {
    for (std::size_t const n : awkwardLengthsAround(streamingLimit)) {
        std::vector<double> const values = ordinaryValues(n);
        long double exact = 0.0L, magnitude = 0.0L;
        for (double const x : values) {
            exact += x;
            magnitude += std::abs(x);
        }
        double const bound = static_cast<double>(static_cast<long double>(n) * unitRoundoff * magnitude);
        forEachPolicy([&] {
            EXPECT_TRUE(within(bound, ElementwiseDispatch::sum(values.data(), values.data() + n),
                               static_cast<double>(exact)));
        });
    }
}

TEST(ElementwiseDispatch, SeesInfinitiesAndNaNsInAnySum) {
    for (std::size_t const n : {5ul, 100ul, 3 * streamingLimit + 1})
        for (std::size_t const where : {0ul, n / 2, n - 1})
            forEachPolicy([&] {
                std::vector<double> values(n, 1.0);
                values[where] = -INFINITY;
                EXPECT_EQ(ElementwiseDispatch::sum(values.data(), values.data() + n), -INFINITY);
                values[where] = NAN;
                EXPECT_TRUE(isNaN(ElementwiseDispatch::sum(values.data(), values.data() + n)));
            });
}

TEST(ExecutionPolicy, StartsAsParallelUnsequenced) {
    // The kit's scopes restore this value; it is what every test program starts with.
    EXPECT_EQ(executionPolicy(), ParallelUnsequenced);
}

TEST(ExecutionPolicy, IsStoredUnvalidated) {
    PolicyScope const scope(static_cast<AlgorithmExecutionPolicy>(-7));
    EXPECT_EQ(executionPolicy(), static_cast<AlgorithmExecutionPolicy>(-7));
}

TEST(ExecutionPolicy, MayChangeWhileOthersCompute) {
    std::atomic<bool> isDone = false;
    std::thread changing([&] {
        for (int i = 0; !isDone; ++i)
            setExecutionPolicy(static_cast<AlgorithmExecutionPolicy>(i % 5));
    });
    std::vector<double> const in = ordinaryValues(3 * functionLimit);
    std::vector<double> expected;
    for (double const x : in)
        expected.push_back(std::sin(x));
    for (int round = 0; round < 50; ++round) {
        std::vector<double> out(in.size());
        ElementwiseDispatch::transform(in.data(), in.data() + in.size(), out.data(), Sine());
        EXPECT_TRUE(sameBits(out, expected));
    }
    isDone = true;
    changing.join();
    setExecutionPolicy(ParallelUnsequenced);
}

} // namespace

} // namespace Tervane::Math
