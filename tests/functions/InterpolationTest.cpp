#include "foundation/ElementwiseDispatch.h"
#include "functions/Generations.h"
#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/Lengths.h"
#include "kit/Policies.h"
#include "kit/SpecialValues.h"

#include <Math/Interpolation.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Tervane::Math {

namespace {

using namespace TestKit;

/// One value by a search from the front. The legacy generation has the breakpoint where the table begins.
double interpolated(double x, std::vector<double> const& xp, std::vector<double> const& fp, bool legacy) {
    std::size_t k = 0;
    while (k < xp.size() && xp[k] < x)
        ++k;
    if (k == xp.size())
        return fp[fp.size() - 1];
    if (k == 0)
        return legacy ? xp[0] : fp[0];
    return std::lerp(fp[k - 1], fp[k], (x - xp[k - 1]) / (xp[k] - xp[k - 1]));
}

std::vector<double> interpolated(std::vector<double> const& x, std::vector<double> const& xp,
                                 std::vector<double> const& fp, bool legacy) {
    std::vector<double> result;
    for (double const value : x)
        result.push_back(interpolated(value, xp, fp, legacy));
    return result;
}

/// Queries below, at, between and above the breakpoints, and every special value.
std::vector<double> queriesFor(std::vector<double> const& xp) {
    std::vector<double> queries = specialValues();
    double const infinity = std::numeric_limits<double>::infinity();
    for (std::size_t k = 0; k < xp.size(); ++k) {
        queries.push_back(xp[k]);
        queries.push_back(std::nextafter(xp[k], infinity));
        queries.push_back(std::nextafter(xp[k], -infinity));
        if (k != 0)
            queries.push_back(xp[k - 1] + (xp[k] - xp[k - 1]) * 0.3);
    }
    return queries;
}

std::vector<double> ascending(std::size_t n, unsigned seed) {
    std::vector<double> xp = ordinaryValues(n, seed);
    std::sort(xp.begin(), xp.end());
    return xp;
}

template<class Generation>
constexpr bool isLegacy = std::is_same_v<Generation, LegacyGeneration>;

template<class Generation>
class Interpolation : public testing::Test {
protected:
    using View = std::conditional_t<isLegacy<Generation>, ViewVector, VectorView2>;

    /// Checks every form of the current generation or of the legacy one under every policy.
    static void expectAll(std::vector<double> const& x, std::vector<double> const& xp,
                          std::vector<double> const& fp) {
        SCOPED_TRACE(std::to_string(x.size()) + " queries, " + std::to_string(xp.size()) + " breakpoints, "
                     + std::to_string(fp.size()) + " values");
        std::vector<double> const expected = interpolated(x, xp, fp, isLegacy<Generation>);
        auto const breakpoints = Generation::column(xp);
        auto const values = Generation::column(fp);
        View const view(fp.data(), fp.size(), Column);
        forEachPolicy([&] {
            auto const queries = Generation::row(x);
            auto fresh = interp(queries, breakpoints, values);
            EXPECT_TRUE(sameBits(elementsOf(fresh), expected));
            EXPECT_EQ(Generation::orientationOf(fresh), Row);
            auto const viaView = interp(queries, breakpoints, view);
            EXPECT_TRUE(sameBits(elementsOf(viaView), expected));
            EXPECT_TRUE(sameBits(elementsOf(queries), x)) << "the argument has changed";

            auto lent = Generation::row(x);
            double const* const storage = lent.data();
            auto taken = interp(std::move(lent), breakpoints, view);
            EXPECT_TRUE(sameBits(elementsOf(taken), expected));
            EXPECT_EQ(taken.data(), storage) << "the storage was not used again";
            EXPECT_EQ(Generation::orientationOf(taken), Row);
            EXPECT_TRUE(Generation::isMovedFrom(lent));

            if constexpr (!isLegacy<Generation>) {
                auto const viaVector = interp(Vector2(queries), breakpoints, values);
                EXPECT_TRUE(sameBits(elementsOf(viaVector), expected));
                for (std::size_t i = 0; i < std::min<std::size_t>(x.size(), 50); ++i)
                    EXPECT_TRUE(sameBits(interp(x[i], breakpoints, values), expected[i]));
            }
        });
    }
};

TYPED_TEST_SUITE(Interpolation, Generations, GenerationName);

} // namespace

TYPED_TEST(Interpolation, EveryTableLengthGivesWhatASearchFromTheFrontGives) {
    for (std::size_t const m : {1U, 2U, 3U, 4U, 5U, 7U, 8U, 9U, 15U, 16U, 17U, 31U, 33U, 100U, 1000U}) {
        std::vector<double> const xp = ascending(m, 1);
        this->expectAll(queriesFor(xp), xp, ordinaryValues(m, 2));
    }
}

TYPED_TEST(Interpolation, EveryQueryLengthIsCovered) {
    std::vector<double> const xp = ascending(50, 3);
    std::vector<double> const fp = ordinaryValues(50, 4);
    for (std::size_t const n : awkwardLengthsAround(Detail::parallelLimit(Detail::ElementCost::Function)))
        this->expectAll(ordinaryValues(n, 5), xp, fp);
}

TYPED_TEST(Interpolation, SpecialValuesInTheTableAreInterpolatedAsTheStandardLibraryDoes) {
    std::vector<double> xp = specialValues();
    xp.erase(std::remove_if(xp.begin(), xp.end(), [](double x) { return std::isnan(x); }), xp.end());
    std::sort(xp.begin(), xp.end());
    for (std::size_t offset = 0; offset < specialValues().size(); ++offset)
        this->expectAll(queriesFor(xp), xp, specialValues(xp.size(), offset));
}

TYPED_TEST(Interpolation, AQueryAtRepeatedBreakpointsGetsTheValueAtTheFirst) {
    std::vector<double> const xp = {1.0, 2.0, 2.0, 2.0, 3.0};
    std::vector<double> const fp = {10.0, 20.0, 30.0, 40.0, 50.0};
    auto const result =
        interp(TypeParam::column(std::vector{2.0, 2.5}), TypeParam::column(xp), TypeParam::column(fp));
    EXPECT_TRUE(sameBits(elementsOf(result), std::vector{20.0, 45.0}));
    this->expectAll(queriesFor(xp), xp, fp);
    // Many equal ones, so that any halving meets some.
    std::vector<double> steps(100);
    for (std::size_t i = 0; i < steps.size(); ++i)
        steps[i] = static_cast<double>(i / 7);
    this->expectAll(queriesFor(steps), steps, ordinaryValues(steps.size()));
}

TYPED_TEST(Interpolation, AboveTheTableTheLastOfMoreValuesThanBreakpointsCounts) {
    std::vector<double> const xp = {1.0, 2.0, 3.0};
    std::vector<double> const fp = {10.0, 20.0, 30.0, 40.0, 55.0};
    this->expectAll(queriesFor(xp), xp, fp);
    auto const result =
        interp(TypeParam::column(std::vector{3.0, 9.0}), TypeParam::column(xp), TypeParam::column(fp));
    EXPECT_TRUE(sameBits(elementsOf(result), std::vector{30.0, 55.0}));
}

TYPED_TEST(Interpolation, WithoutBreakpointsTheLastValueCounts) {
    this->expectAll(specialValues(), {}, {7.0, 8.0});
}

TYPED_TEST(Interpolation, QueriesMayBeTheBreakpointsThemselves) {
    auto const xp = TypeParam::column(ascending(40, 6));
    auto const fp = TypeParam::column(ordinaryValues(40, 7));
    auto const result = interp(xp, xp, fp);
    for (std::size_t i = 1; i < 40; ++i)
        EXPECT_EQ(result[i], fp[i]);
}

TYPED_TEST(Interpolation, ALentVectorCostsNoAllocation) {
    PolicyScope const scope(Inline);
    auto x = TypeParam::column(ordinaryValues(1000));
    auto const xp = TypeParam::column(ascending(30, 8));
    std::vector<double> const fp = ordinaryValues(30, 9);
    typename TestFixture::View const view(fp.data(), fp.size(), Column);
    AllocationCounter const counter;
    auto const y = interp(std::move(x), xp, view);
    EXPECT_EQ(counter.count(), 0U);
    EXPECT_EQ(y.length(), 1000U);
}

TEST(InterpolationVector2, HoldsTheFirstValueUpToTheFirstBreakpoint) {
    double const xp[] = {1.0, 2.0, 3.0};
    double const fp[] = {10.0, 20.0, 30.0};
    double const x[] = {0.0, 1.0, 2.5, 3.0, 9.0};
    Vector2 const result = interp(Vector2(x, 5), Vector2(xp, 3), Vector2(fp, 3));
    EXPECT_TRUE(sameBits(elementsOf(result), std::vector{10.0, 10.0, 25.0, 30.0, 30.0}));
    EXPECT_EQ(interp(2.5, Vector2(xp, 3), Vector2(fp, 3)), 25.0);
    EXPECT_EQ(interp(0.0, Vector2(xp, 3), Vector2(fp, 3)), 10.0);
    EXPECT_EQ(interp(9.0, Vector2(xp, 3), Vector2(fp, 3)), 30.0);
}

TEST(InterpolationVector, GivesTheFirstBreakpointItselfUpToIt) {
    Vector const x{0.0, 1.0, 2.5, 3.0, 9.0};
    Vector const xp{1.0, 2.0, 3.0};
    Vector const fp{10.0, 20.0, 30.0};
    Vector const result = interp(x, xp, fp);
    EXPECT_TRUE(sameBits(elementsOf(result), std::vector{1.0, 1.0, 25.0, 30.0, 30.0}));
}

TEST(InterpolationVector, ReadsTheValuesThroughTheViewsVirtualAccess) {
    /// Gives other values than those that lie where it looks.
    class Tenfold : public ViewVector {
    public:
        explicit Tenfold(std::vector<double> const& values)
            : ViewVector(values.data(), values.size(), Column), _tenfold(values) {
            for (double& value : _tenfold)
                value *= 10.0;
        }
        using ViewVector::operator[];
        double const& operator[](std::size_t i) const override { return _tenfold[i]; }

    private:
        std::vector<double> _tenfold;
    };

    std::vector<double> const values = {1.0, 2.0, 3.0};
    Tenfold const fp(values);
    std::vector<double> const queries = {0.0, 1.5, 2.5, 3.0, 9.0};
    std::vector<double> many;
    std::vector<double> expected;
    for (int i = 0; i < 500; ++i) {
        many.insert(many.end(), queries.begin(), queries.end());
        for (double const value : {1.0, 15.0, 25.0, 30.0, 30.0})
            expected.push_back(value);
    }
    forEachPolicy([&] {
        Vector const result = interp(Vector(many.data(), many.size()), Vector{1.0, 2.0, 3.0}, fp);
        EXPECT_TRUE(sameBits(elementsOf(result), expected));
    });
}

TEST(InterpolationVector, AnEmptyViewAboveTheTableGivesWhatItsAddressHolds) {
    // An empty view says that it has one element.
    double const value = 4.0;
    ViewVector const fp(&value, 0, Column);
    Vector const result = interp(Vector{1.0, 2.0}, Vector(), fp);
    EXPECT_TRUE(sameBits(elementsOf(result), std::vector{4.0, 4.0}));
}

// What point i gives while the table is the vector that is written: points before it count as they are by
// then.
template<class Generation>
std::vector<double> interpolatedInItself(std::vector<double> x, std::vector<double> const* fp) {
    for (double& value : x) {
        std::vector<double> const& values = fp != nullptr ? *fp : x;
        // By halves, because what is written need not ascend any more.
        auto const k = static_cast<std::size_t>(std::lower_bound(x.begin(), x.end(), value) - x.begin());
        if (k == x.size())
            value = values.back();
        else if (k == 0)
            value = isLegacy<Generation> ? x[0] : values[0];
        else
            value = std::lerp(values[k - 1], values[k], (value - x[k - 1]) / (x[k] - x[k - 1]));
    }
    return x;
}

TYPED_TEST(Interpolation, InATableThatIsWrittenGoesInOrderUnderEveryPolicy) {
    using OfItsOwn = typename TestFixture::View;
    for (std::size_t const n : {1, 7, 100, 5'000}) {
        SCOPED_TRACE(n);
        std::vector<double> const x = ascending(n, 3);
        std::vector<double> const values = ordinaryValues(n, 4);
        auto const fp = TypeParam::column(values);
        std::vector<double> const inOwnBreakpoints = interpolatedInItself<TypeParam>(x, &values);
        std::vector<double> const inItself = interpolatedInItself<TypeParam>(x, nullptr);
        forEachPolicy([&] {
            auto points = TypeParam::column(x);
            EXPECT_TRUE(
                sameBits(elementsOf(interp(std::move(points), points, OfItsOwn(fp.data(), n, Column))),
                         inOwnBreakpoints));
            auto both = TypeParam::column(x);
            EXPECT_TRUE(sameBits(elementsOf(interp(std::move(both), both, OfItsOwn(both.data(), n, Column))),
                                 inItself));
        });
    }
}

TEST(InterpolationVector, WhatACallersViewThrowsComesOutUnderEveryPolicy) {
    /// Throws when an element is asked for that it does not have, and notes which thread asks.
    class Checked : public ViewVector {
    public:
        using ViewVector::operator[];
        using ViewVector::ViewVector;
        double const& operator[](std::size_t i) const override {
            if (std::this_thread::get_id() != _owner)
                ++_calls;
            if (i == 2)
                throw std::out_of_range("element 2");
            return ViewVector::operator[](i);
        }
        int callsFromElsewhere() const { return _calls; }

    private:
        std::thread::id _owner = std::this_thread::get_id();
        mutable std::atomic<int> _calls = 0;
    };

    constexpr std::size_t n = 20'000;
    double const values[] = {10.0, 20.0, 30.0};
    Checked const fp(values, 3, Column);
    Vector const xp{1.0, 2.0, 3.0};
    Vector x(n, 1.5);
    x[n - 1] = 2.5;
    forEachPolicy([&] {
        EXPECT_THROW(interp(x, xp, fp), std::out_of_range);
        EXPECT_EQ(x[0], 1.5);
        Vector points(x);
        EXPECT_THROW(interp(std::move(points), xp, fp), std::out_of_range);
        // In order up to there, and the vector stays the caller's.
        EXPECT_EQ(points.length(), n);
        EXPECT_EQ(points[n - 2], 15.0);
        EXPECT_EQ(points[n - 1], 2.5);
    });
    EXPECT_EQ(fp.callsFromElsewhere(), 0);
}

} // namespace Tervane::Math
