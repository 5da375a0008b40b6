// Where the legacy operators are declared, and that the global ones are found nowhere else: a caller's own
// operators, and those of Tervane::Math, hide them in their namespaces.

#include <Math/ComplexVector.h>
#include <Math/ComplexVector2.h>
#include <Math/Vector.h>
#include <Math/Vector2.h>
#include <Math/ViewVector.h>

#include <gtest/gtest.h>

#include <concepts>
#include <utility>

using Tervane::Math::ComplexVector;
using Tervane::Math::Matrix;
using Tervane::Math::Vector;
using Tervane::Math::ViewVector;

namespace {

Vector globalSum(Vector&& a, Vector const& b) {
    return std::move(a) + b - Vector(b);
}

ComplexVector globalScaled(ComplexVector&& z) {
    return 2.0 * (std::move(z) * 3.0) / 2.0;
}

} // namespace

namespace Tervane::Math {

namespace {

// Tervane::Math has operators of these signs, which hide the global ones.
template<class A, class B>
concept AddableInTheLibrarysNamespace = requires(A&& a, B&& b) {
    std::forward<A>(a) + std::forward<B>(b);
};
template<class A, class B>
concept MultipliableInTheLibrarysNamespace = requires(A&& a, B&& b) {
    std::forward<A>(a) * std::forward<B>(b);
};

Vector2 currentSumInTheLibrarysNamespace(Vector2 const& a, Vector2 const& b) {
    return -(a + b) * 2.0 / 2.0 - a;
}

} // namespace

} // namespace Tervane::Math

namespace Caller {

namespace {

// A caller's own sums and products of the library's types, which note that they ran.
int calls = 0;

Vector operator+(Vector const& a, Vector const& b) {
    ++calls;
    return Vector{a[0], b[0]};
}

ComplexVector operator*(ComplexVector const& z, double s) {
    ++calls;
    return ComplexVector(z.length() + static_cast<std::size_t>(s));
}

Vector sum(Vector& a, Vector const& b) {
    return std::move(a) + b;
}

Vector sumOfTheLibrary(Vector&& a, Vector const& b) {
    return ::operator+(std::move(a), b);
}

ComplexVector scaled(ComplexVector& z) {
    return std::move(z) * 2.0;
}

} // namespace

} // namespace Caller

namespace {

template<class A, class B>
concept Addable = requires(A&& a, B&& b) {
    std::forward<A>(a) + std::forward<B>(b);
};
template<class A, class B>
concept Subtractable = requires(A&& a, B&& b) {
    std::forward<A>(a) - std::forward<B>(b);
};
template<class A, class B>
concept Multipliable = requires(A&& a, B&& b) {
    std::forward<A>(a) * std::forward<B>(b);
};
template<class A, class B>
concept Divisible = requires(A&& a, B&& b) {
    std::forward<A>(a) / std::forward<B>(b);
};
template<class A, class B>
concept AddAssignable = requires(A&& a, B&& b) {
    std::forward<A>(a) += std::forward<B>(b);
};
template<class A, class B>
concept SubtractAssignable = requires(A&& a, B&& b) {
    std::forward<A>(a) -= std::forward<B>(b);
};
template<class A, class B>
concept MultiplyAssignable = requires(A&& a, B&& b) {
    std::forward<A>(a) *= std::forward<B>(b);
};
template<class A, class B>
concept DivideAssignable = requires(A&& a, B&& b) {
    std::forward<A>(a) /= std::forward<B>(b);
};

using Named = Vector const&;
using Taken = Vector&&;
using Z = ComplexVector const&;
using TakenZ = ComplexVector&&;

// The declarations are where they are said to be: a qualified name finds no other.
using Binary = Vector (*)(Vector&&, Vector const&);
using Scalar = Vector (*)(Vector&&, double const&);
using ComplexScalar = ComplexVector (*)(ComplexVector&&, double const&);
constexpr Binary globalPlus = &::operator+;
constexpr Binary globalMinus = &::operator-;
constexpr Binary productOfTheLibrary = &Tervane::Math::operator*;
constexpr Scalar quotientOfTheLibrary = &Tervane::Math::operator/;
constexpr ComplexScalar globalTimes = &::operator*;
constexpr ComplexScalar globalOver = &::operator/;

template<class A, class B>
concept GloballyMultipliable = requires(A&& a, B&& b) {
    ::operator*(std::forward<A>(a), std::forward<B>(b));
};
template<class A, class B>
concept GloballyAddable = requires(A&& a, B&& b) {
    ::operator+(std::forward<A>(a), std::forward<B>(b));
};

TEST(LegacyOperatorNamespaces, SumsOfVectorsAndScaledComplexVectorsAreGlobalTheRestIsNot) {
    static_assert(GloballyAddable<Taken, Named>);
    static_assert(GloballyAddable<Named, Taken>);
    static_assert(!GloballyAddable<Named, double const&>);
    static_assert(GloballyMultipliable<Z, double const&>);
    static_assert(!GloballyMultipliable<Named, Named>);
    static_assert(!GloballyMultipliable<Z, Named>);
    EXPECT_EQ(globalPlus(Vector{1.0}, Vector{2.0})[0], 3.0);
    EXPECT_EQ(globalMinus(Vector{1.0}, Vector{2.0})[0], -1.0);
    EXPECT_EQ(productOfTheLibrary(Vector{3.0}, Vector{2.0})[0], 6.0);
    EXPECT_EQ(quotientOfTheLibrary(Vector{3.0}, 2.0)[0], 1.5);
    ComplexVector z(1);
    z[0].real() = 4.0;
    EXPECT_EQ(globalTimes(ComplexVector(z), 2.0)[0].real(), 8.0);
    EXPECT_EQ(globalOver(ComplexVector(z), 2.0)[0].real(), 2.0);
}

TEST(LegacyOperatorNamespaces, SumOfTwoNamedVectorsIsNotOffered) {
    static_assert(!Addable<Named, Named>);
    static_assert(!Subtractable<Named, Named>);
    static_assert(!Addable<Vector&, Vector&>);
    static_assert(!Subtractable<Vector&, Vector&>);
    static_assert(Addable<Taken, Named>);
    static_assert(Addable<Named, Taken>);
    static_assert(Addable<Taken, Taken>);
    static_assert(Addable<Vector&, Taken>);
    static_assert(Subtractable<Taken, Named>);
    static_assert(Subtractable<Named, Taken>);
    static_assert(Subtractable<Taken, Taken>);
    SUCCEED() << "checked when compiled";
}

TEST(LegacyOperatorNamespaces, TheOverloadSetIsExact) {
    static_assert(Multipliable<Named, Named>);
    static_assert(!Divisible<Named, Named>);
    static_assert(!Divisible<Taken, Taken>);
    static_assert(!Divisible<double, Named>);
    static_assert(!Divisible<double, Taken>);
    static_assert(Divisible<Named, double>);
    static_assert(Addable<Named, double> && Addable<double, Named>);
    static_assert(Subtractable<Named, double> && Subtractable<double, Taken>);
    static_assert(AddAssignable<Vector&, Named> && SubtractAssignable<Vector&, Named>);
    static_assert(
        AddAssignable<Vector&, ViewVector const&> && SubtractAssignable<Vector&, ViewVector const&>);
    static_assert(!AddAssignable<Vector&, double>);
    static_assert(!MultiplyAssignable<Vector&, Named>);
    static_assert(!MultiplyAssignable<Vector&, double>);
    static_assert(!DivideAssignable<Vector&, double>);
    static_assert(!Addable<Taken, ViewVector const&>);
    static_assert(!Multipliable<Named, ViewVector const&>);
    static_assert(!Multipliable<Named, Matrix const&>);
    static_assert(!Addable<Taken, Tervane::Math::Vector2>);
    static_assert(!Multipliable<Tervane::Math::Vector2, Named>);

    static_assert(Multipliable<Z, double> && Multipliable<double, Z> && Multipliable<TakenZ, double>);
    static_assert(Multipliable<double, TakenZ> && Divisible<Z, double> && Divisible<TakenZ, double>);
    static_assert(!Divisible<double, Z>);
    static_assert(Multipliable<Z, Named> && Multipliable<TakenZ, Named>);
    static_assert(Multipliable<Named, Z> && Multipliable<Named, TakenZ>);
    static_assert(!Divisible<Z, Named>);
    static_assert(!Multipliable<Z, Z>);
    static_assert(!Addable<Z, double> && !Addable<Z, Z>);
    static_assert(!MultiplyAssignable<ComplexVector&, double>);
    SUCCEED() << "checked when compiled";
}

TEST(LegacyOperatorNamespaces, GlobalMeansGlobalOnly) {
    Vector const b{5.0};
    EXPECT_EQ(globalSum(Vector{1.0}, b)[0], 1.0);
    ComplexVector z(1);
    z[0] = {1.0, -1.0};
    EXPECT_EQ(globalScaled(std::move(z))[0].imag(), -3.0);

    static_assert(!Tervane::Math::AddableInTheLibrarysNamespace<Taken, Named>);
    static_assert(Tervane::Math::AddableInTheLibrarysNamespace<Taken, double>);
    static_assert(!Tervane::Math::MultipliableInTheLibrarysNamespace<Z, double>);
    static_assert(Tervane::Math::MultipliableInTheLibrarysNamespace<Z, Named>);
}

TEST(LegacyOperatorNamespaces, ACallersOwnOperatorsAreTakenAndTheirOperandsLeftAlone) {
    Vector a{1.0};
    Vector const b{5.0};
    Caller::calls = 0;
    EXPECT_EQ(Caller::sum(a, b).length(), 2U);
    EXPECT_EQ(Caller::calls, 1);
    EXPECT_EQ(a[0], 1.0);
    EXPECT_EQ(Caller::sumOfTheLibrary(std::move(a), b)[0], 6.0);

    ComplexVector z(3);
    EXPECT_EQ(Caller::scaled(z).length(), 5U);
    EXPECT_EQ(Caller::calls, 2);
    EXPECT_EQ(z.length(), 3U);
}

TEST(LegacyOperatorNamespaces, TheCurrentGenerationsOperatorsStayUnambiguous) {
    using Tervane::Math::Vector2;
    Vector2 a(1, 2.0);
    Vector2 const b(1, 3.0);
    EXPECT_EQ(Tervane::Math::currentSumInTheLibrarysNamespace(a, b)[0], -7.0);
    EXPECT_EQ((a + b * a - 1)[0], 7.0);
    Tervane::Math::ComplexVector2 z(1);
    EXPECT_EQ((z * 2.0 / 2.0 * a).length(), 1U);
}

} // namespace
