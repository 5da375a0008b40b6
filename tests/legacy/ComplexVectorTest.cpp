#include "foundation/ElementwiseDispatch.h"
#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/LengthErrors.h"
#include "kit/Lengths.h"
#include "kit/Policies.h"
#include "kit/SpecialValues.h"
#include "kit/Threads.h"
#include "legacy/Access.h"

#include <Math/ComplexVector.h>
#include <Math/Vector.h>
#include <System/Object.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tervane::Math::LegacyTest {

namespace {

using ::operator*;
using ::operator/;
using Detail::LegacyAccess;
using TestKit::AllocationCounter;
using TestKit::forEachPolicy;
using TestKit::partsOf;
using TestKit::sameBits;
using TestKit::threadsOfThisProcess;

using Complex = std::complex<double>;
using Values = std::vector<double>;

ComplexVector complexOf(Values const& parts) {
    ComplexVector z;
    z.setData(parts.data(), parts.size() / 2);
    return z;
}

Values valuesOf(ComplexVector const& z) {
    return Values(z.data(), z.data() + 2 * z.length());
}

TEST(ComplexVector, DefaultIsEmpty) {
    ComplexVector const z;
    EXPECT_EQ(z.length(), 0U);
    EXPECT_EQ(z.data(), nullptr);
}

TEST(ComplexVector, FromALengthHoldsZeros) {
    EXPECT_TRUE(sameBits(partsOf(ComplexVector(3)), Values(6, 0.0)));
    EXPECT_EQ(ComplexVector(3).length(), 3U);
    static_assert(!std::is_convertible_v<std::size_t, ComplexVector>);
}

TEST(ComplexVector, FromAStandardVectorCopiesIt) {
    std::vector<Complex> const source{{1.0, 2.0}, {3.0, -4.0}};
    EXPECT_EQ(valuesOf(ComplexVector(source)), (Values{1.0, 2.0, 3.0, -4.0}));
    EXPECT_EQ(ComplexVector(std::vector<Complex>()).length(), 0U);
    static_assert(!std::is_convertible_v<std::vector<Complex>, ComplexVector>);
}

TEST(ComplexVector, IsAnObjectAndNoTable) {
    static_assert(std::is_base_of_v<System::Object, ComplexVector>);
    static_assert(!std::is_base_of_v<AbstractDataTable, ComplexVector>);
    static_assert(std::has_virtual_destructor_v<ComplexVector>);
    EXPECT_EQ(sizeof(ComplexVector), 2 * sizeof(void*));
    ComplexVector const z;
    EXPECT_NE(dynamic_cast<ComplexVector const*>(static_cast<System::Object const*>(&z)), nullptr);
}

TEST(ComplexVector, CopiesByConstructionOnly) {
    static_assert(std::is_copy_constructible_v<ComplexVector>);
    static_assert(!std::is_copy_assignable_v<ComplexVector>);
    static_assert(std::is_nothrow_move_constructible_v<ComplexVector>);
    static_assert(std::is_nothrow_move_assignable_v<ComplexVector>);
    ComplexVector source = complexOf({1.0, 2.0, 3.0, 4.0});
    source.reserve(100);
    ComplexVector const copy(source);
    EXPECT_EQ(valuesOf(copy), valuesOf(source));
    EXPECT_NE(copy.data(), std::as_const(source).data());
    EXPECT_EQ(LegacyAccess::elements(copy).capacity(), 2U);
}

TEST(ComplexVector, MovesTakeTheDataObjectAndLeaveNone) {
    ComplexVector source = complexOf({1.0, 2.0});
    double const* const storage = source.data();
    AllocationCounter const counter;
    ComplexVector target(std::move(source));
    EXPECT_EQ(target.data(), storage);
    EXPECT_FALSE(LegacyAccess::hasData(source));
    EXPECT_EQ(&(source = std::move(target)), &source);
    EXPECT_EQ(source.data(), storage);
    EXPECT_FALSE(LegacyAccess::hasData(target));
    EXPECT_EQ(counter.count(), 0U);
}

TEST(ComplexVector, SetDataTakesPairs) {
    double const pairs[] = {1.0, 2.0, 3.0, 4.0};
    ComplexVector z;
    z.setData(pairs, 2);
    EXPECT_EQ(z.length(), 2U);
    EXPECT_EQ(Complex(z[0]), Complex(1.0, 2.0));
    EXPECT_EQ(Complex(z[1]), Complex(3.0, 4.0));
}

TEST(ComplexVector, SetDataKeepsTheStorageWhenItShrinks) {
    ComplexVector z(10);
    double const* const storage = z.data();
    double const pairs[] = {1.0, 2.0, 3.0, 4.0};
    AllocationCounter const counter;
    z.setData(pairs, 2);
    EXPECT_EQ(counter.count(), 0U);
    EXPECT_EQ(z.data(), storage);
    EXPECT_EQ(valuesOf(z), (Values{1.0, 2.0, 3.0, 4.0}));
    EXPECT_EQ(LegacyAccess::elements(z).capacity(), 10U);
    z.setData(pairs, 0);
    EXPECT_EQ(z.length(), 0U);
}

TEST(ComplexVector, SetDataKeepsSpecialValues) {
    Values const parts = TestKit::specialValues();
    EXPECT_TRUE(sameBits(partsOf(complexOf(parts)), parts));
}

TEST(ComplexVector, ReserveMakesRoomForExactlyThatMany) {
    ComplexVector z = complexOf({1.0, 2.0});
    z.reserve(10);
    EXPECT_EQ(LegacyAccess::elements(z).capacity(), 10U);
    EXPECT_EQ(valuesOf(z), (Values{1.0, 2.0}));
    double const* const storage = z.data();
    z.reserve(5);
    EXPECT_EQ(LegacyAccess::elements(z).capacity(), 10U);
    EXPECT_EQ(z.data(), storage);
}

TEST(ComplexVector, RefusesMoreThanTheLargestLength) {
    std::string const text = "vector too long";
    std::size_t const tooMany = std::size_t{1} << 60;
    ComplexVector z = complexOf({1.0, 2.0});
    double const x = 0.0;
    EXPECT_EQ(TestKit::lengthErrorOf([&] { z.reserve(tooMany); }), text);
    EXPECT_EQ(TestKit::lengthErrorOf([&] { z.setData(&x, tooMany); }), text);
    EXPECT_EQ(TestKit::lengthErrorOf([&] { ComplexVector const w(tooMany); }), text);
    EXPECT_EQ(valuesOf(z), (Values{1.0, 2.0}));
}

TEST(ComplexVector, MissingMemoryThrows) {
    if (!TestKit::FailingAllocations::areSupported())
        GTEST_SKIP() << "this build's heap cannot be made to fail";
    TestKit::FailingAllocations const noLargeBlocks(100'000);
    EXPECT_THROW(ComplexVector(100'000), std::bad_alloc);
    ComplexVector z(1);
    EXPECT_THROW(z.reserve(100'000), std::bad_alloc);
    EXPECT_EQ(z.length(), 1U);
}

// --- handles

TEST(ComplexRef, ReadsAndWritesTheElement) {
    ComplexVector z = complexOf({1.0, 2.0, 3.0, 4.0});
    ComplexRef const second = z[1];
    EXPECT_EQ(&second.real(), z.data() + 2);
    EXPECT_EQ(&second.imag(), z.data() + 3);
    second.real() = 7.0;
    second.imag() = -0.0;
    EXPECT_EQ(valuesOf(z), (Values{1.0, 2.0, 7.0, -0.0}));
    EXPECT_TRUE(std::signbit(z[1].imag()));
    z[0] = Complex(5.0, 6.0);
    EXPECT_EQ(Complex(z[0]), Complex(5.0, 6.0));
    Complex const read = z[0];
    EXPECT_EQ(read, Complex(5.0, 6.0));
}

TEST(ComplexRef, AssignmentFromAnotherHandleWritesTheElement) {
    ComplexVector z = complexOf({1.0, 2.0, 3.0, 4.0});
    z[0] = z[1];
    EXPECT_EQ(valuesOf(z), (Values{3.0, 4.0, 3.0, 4.0}));
    ComplexRef first = z[0];
    ComplexVector const other = complexOf({8.0, 9.0});
    first = other[0];
    EXPECT_EQ(valuesOf(z), (Values{8.0, 9.0, 3.0, 4.0}));
    swap(z[0], z[1]);
    EXPECT_EQ(valuesOf(z), (Values{3.0, 4.0, 8.0, 9.0}));
}

TEST(ComplexView, ReadsTheElementOfAConstantVector) {
    ComplexVector const z = complexOf({1.0, 2.0, 3.0, 4.0});
    EXPECT_EQ(z[1].real(), 3.0);
    EXPECT_EQ(z[1].imag(), 4.0);
    Complex const read = z[1];
    EXPECT_EQ(read, Complex(3.0, 4.0));
    static_assert(std::is_same_v<decltype(z[0]), ComplexView>);
    static_assert(!std::is_assignable_v<ComplexView, Complex>);
}

template<class Z>
concept Iterable = requires(Z& z) {
    z.begin();
    z.end();
};

TEST(ComplexVectorIterator, IsForVectorsThatMayBeWritten) {
    static_assert(Iterable<ComplexVector>);
    static_assert(!Iterable<ComplexVector const>);
    SUCCEED() << "checked when compiled";
}

TEST(ComplexVectorIterator, StepsByWholeElements) {
    ComplexVector z = complexOf({1.0, 2.0, 3.0, 4.0, 5.0, 6.0});
    ComplexVector::iterator it = z.begin();
    EXPECT_EQ(&(*it).real(), z.data());
    EXPECT_EQ(&(*++it).real(), z.data() + 2);
    EXPECT_EQ(&(*it++).real(), z.data() + 2);
    EXPECT_EQ(&(*it).real(), z.data() + 4);
    EXPECT_EQ(&(*it--).real(), z.data() + 4);
    EXPECT_EQ(&(*--it).real(), z.data());
    EXPECT_EQ(it, z.begin());
    EXPECT_NE(it, z.end());
    EXPECT_EQ(z.end() - z.begin(), 3);
    EXPECT_EQ(&(z.end()[-1]).real(), z.data() + 4);
    EXPECT_EQ(it + 3, z.end());
    EXPECT_EQ(3 + it, z.end());
    EXPECT_EQ(z.end() - 3, it);
    it += 2;
    it -= 1;
    EXPECT_EQ(&(*it).real(), z.data() + 2);
    EXPECT_TRUE(z.begin() < it && it <= z.end() && z.end() > it && it >= z.begin());
    ComplexVector empty;
    EXPECT_EQ(empty.begin(), empty.end());
}

TEST(ComplexVectorIterator, WorksWithTheStandardLibrary) {
    static_assert(std::random_access_iterator<ComplexVector::iterator>);
    static_assert(std::is_same_v<std::iterator_traits<ComplexVector::iterator>::iterator_category,
                                 std::random_access_iterator_tag>);
    static_assert(std::is_same_v<decltype(*std::declval<ComplexVector::iterator>()), ComplexRef>);
    ComplexVector z = complexOf({1.0, 2.0, 3.0, 4.0, 5.0, 6.0});
    for (ComplexRef element : z)
        element.real() += 10.0;
    EXPECT_EQ(valuesOf(z), (Values{11.0, 2.0, 13.0, 4.0, 15.0, 6.0}));
    std::transform(z.begin(), z.end(), z.begin(), [](Complex x) { return std::conj(x); });
    EXPECT_EQ(valuesOf(z), (Values{11.0, -2.0, 13.0, -4.0, 15.0, -6.0}));
    std::ranges::sort(z.begin(), z.end(), [](Complex a, Complex b) { return a.real() > b.real(); });
    EXPECT_EQ(valuesOf(z), (Values{15.0, -6.0, 13.0, -4.0, 11.0, -2.0}));
    std::sort(z.begin(), z.end(), [](Complex a, Complex b) { return a.real() < b.real(); });
    EXPECT_EQ(valuesOf(z), (Values{11.0, -2.0, 13.0, -4.0, 15.0, -6.0}));
    std::vector<Complex> const copied(z.begin(), z.end());
    EXPECT_EQ(copied[2], Complex(15.0, -6.0));
}

// --- products with a scalar

double times(double a, double b) {
    return a * b;
}
double over(double a, double b) {
    return a / b;
}

struct ScalarForm {
    char const* name;
    ComplexVector (*apply)(ComplexVector&, double const&);
    double (*reference)(double, double);
    bool reuses;
};

constexpr ScalarForm scalarForms[] = {
    {"z&& * s", [](ComplexVector& z, double const& s) { return std::move(z) * s; }, times, true},
    {"z * s", [](ComplexVector& z, double const& s) { return std::as_const(z) * s; }, times, false},
    {"s * z&&", [](ComplexVector& z, double const& s) { return s * std::move(z); }, times, true},
    {"s * z", [](ComplexVector& z, double const& s) { return s * std::as_const(z); }, times, false},
    {"z&& / s", [](ComplexVector& z, double const& s) { return std::move(z) / s; }, over, true},
    {"z / s", [](ComplexVector& z, double const& s) { return std::as_const(z) / s; }, over, false},
};

TEST(ComplexVectorArithmetic, ByAScalarIsTheSameUnderEveryPolicyBitForBit) {
    std::size_t const limit = Detail::parallelLimit(Detail::ElementCost::Streaming);
    for (std::size_t const n : TestKit::awkwardLengthsAround(limit)) {
        SCOPED_TRACE(n);
        Values const parts = TestKit::specialValues(2 * n);
        ComplexVector const original = complexOf(parts);
        for (double const s : {0.1, -3.0, -0.0}) {
            for (ScalarForm const& form : scalarForms) {
                SCOPED_TRACE(form.name);
                Values expected(2 * n);
                for (std::size_t i = 0; i < 2 * n; ++i)
                    expected[i] = form.reference(parts[i], s);
                forEachPolicy([&] {
                    ComplexVector z(original);
                    EXPECT_TRUE(sameBits(partsOf(form.apply(z, s)), expected));
                });
            }
        }
    }
}

TEST(ComplexVectorArithmetic, ByAScalarReusesAnRvalueAndCopiesANamedVector) {
    for (ScalarForm const& form : scalarForms) {
        SCOPED_TRACE(form.name);
        ComplexVector z(100);
        double const* const storage = z.data();
        AllocationCounter const counter;
        ComplexVector const result = form.apply(z, 2.0);
        EXPECT_EQ(counter.count(), form.reuses ? 0U : 2U) << "elements and data object";
        EXPECT_EQ(result.data() == storage, form.reuses);
        EXPECT_EQ(LegacyAccess::hasData(z), !form.reuses);
    }
}

TEST(ComplexVectorArithmetic, DividesTrulyRatherThanMultiplyingByTheInverse) {
    double const x = 5.0;
    double const s = 49.0; // 49 * (1 / 49) is not 1
    ASSERT_NE(49.0 * (1.0 / s), 1.0);
    ComplexVector const z = complexOf({49.0, x}) / s;
    EXPECT_TRUE(sameBits(z[0].real(), 1.0));
    EXPECT_TRUE(sameBits(z[0].imag(), x / s));
}

TEST(ComplexVectorArithmetic, AScalarMayBeAPartOfTheVector) {
    ComplexVector z = complexOf({2.0, 3.0, 4.0, 5.0});
    double const& part = z[0].real();
    EXPECT_EQ(valuesOf(std::move(z) * part), (Values{4.0, 6.0, 8.0, 10.0}));
}

// --- products with a real vector

struct VectorForm {
    char const* name;
    ComplexVector (*apply)(ComplexVector&, Vector const&);
    bool reuses;
};

constexpr VectorForm vectorForms[] = {
    {"z&& * v", [](ComplexVector& z, Vector const& v) { return std::move(z) * v; }, true},
    {"v * z&&", [](ComplexVector& z, Vector const& v) { return v * std::move(z); }, true},
    {"z * v", [](ComplexVector& z, Vector const& v) { return std::as_const(z) * v; }, false},
    {"v * z", [](ComplexVector& z, Vector const& v) { return v * std::as_const(z); }, false},
};

TEST(ComplexVectorArithmetic, ByARealVectorIsTheSameUnderEveryPolicyBitForBit) {
    std::size_t const limit = Detail::parallelLimit(Detail::ElementCost::Streaming);
    for (std::size_t const n : TestKit::awkwardLengthsAround(limit)) {
        SCOPED_TRACE(n);
        Values const parts = TestKit::specialValues(2 * n);
        Values const factors = TestKit::ordinaryValues(n);
        ComplexVector const original = complexOf(parts);
        Vector const v(factors);
        Values expected(2 * n);
        for (std::size_t i = 0; i < 2 * n; ++i)
            expected[i] = parts[i] * factors[i / 2];
        for (VectorForm const& form : vectorForms) {
            SCOPED_TRACE(form.name);
            forEachPolicy([&] {
                ComplexVector z(original);
                EXPECT_TRUE(sameBits(partsOf(form.apply(z, v)), expected));
            });
        }
    }
}

TEST(ComplexVectorArithmetic, ByARealVectorWalksTheComplexOne) {
    EXPECT_EQ(valuesOf(complexOf({1.0, 1.0}) * Vector{3.0, 4.0}), (Values{3.0, 3.0}));
    EXPECT_EQ((ComplexVector() * Vector{3.0}).length(), 0U);
}

TEST(ComplexVectorArithmetic, ByARealVectorMakesACopyOfItThatNobodyReads) {
    Vector const v(100, 2.0);
    std::size_t copyCount = 0;
    std::size_t copyBytes = 0;
    {
        AllocationCounter const counter;
        Vector const copy(v);
        copyCount = counter.count();
        copyBytes = counter.bytes();
    }
    ASSERT_GT(copyCount, 0U);
    for (VectorForm const& form : vectorForms) {
        SCOPED_TRACE(form.name);
        ComplexVector z(100);
        double const* const storage = z.data();
        AllocationCounter const counter;
        ComplexVector const result = form.apply(z, v);
        if (form.reuses) {
            EXPECT_EQ(counter.count(), copyCount);
            EXPECT_EQ(counter.bytes(), copyBytes);
        } else {
            EXPECT_EQ(counter.count(), copyCount + 2) << "the copies of both, each with its data object";
        }
        EXPECT_EQ(result.data() == storage, form.reuses);
        EXPECT_EQ(LegacyAccess::hasData(z), !form.reuses);
    }
}

/// Ends the process: with 0 when `product` left its threads as they were, with 1 when there are more now.
template<class Product>
[[noreturn]] void exitWithNewThreads(Product const& product) {
    setExecutionPolicy(Parallel);
    std::size_t const n = 8 * Detail::parallelLimit(Detail::ElementCost::Streaming);
    ComplexVector z(n);
    std::size_t const before = threadsOfThisProcess();
    product(z, n);
    std::_Exit(threadsOfThisProcess() > before ? 1 : 0);
}

// In processes of their own, where nothing has started the workers of the parallel policies yet.
TEST(ComplexVectorArithmeticDeathTest, ByARealVectorStaysOnTheCallingThread) {
    if (std::thread::hardware_concurrency() < 2)
        GTEST_SKIP() << "the parallel policies have no workers on this machine";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        exitWithNewThreads([](ComplexVector& z, std::size_t n) { z = std::move(z) * Vector(n, 2.0); }),
        testing::ExitedWithCode(0), "");
    EXPECT_EXIT(exitWithNewThreads([](ComplexVector& z, std::size_t) { z = std::move(z) * 2.0; }),
                testing::ExitedWithCode(1), "")
        << "the scalar product does start workers, so the test can see them";
}

TEST(ComplexVectorArithmetic, WorkedExamples) {
    EXPECT_EQ(valuesOf(complexOf({1.0, 2.0, 3.0, -4.0}) * 2.0), (Values{2.0, 4.0, 6.0, -8.0}));
    EXPECT_EQ(valuesOf(complexOf({1.0, 2.0, 3.0, -4.0}) / 2.0), (Values{0.5, 1.0, 1.5, -2.0}));
    EXPECT_EQ(valuesOf(complexOf({1.0, 1.0, 2.0, 2.0}) * Vector{3.0, 4.0}), (Values{3.0, 3.0, 8.0, 8.0}));
}

} // namespace

} // namespace Tervane::Math::LegacyTest
