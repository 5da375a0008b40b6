#include "foundation/Operations.h"
#include "legacy/Access.h"
#include "legacy/VectorSum.h"

#include <Math/Vector.h>

#include <utility>

using Tervane::Math::Vector;

namespace Tervane::Math {

namespace {

using namespace Detail;

// In place on `v`, which the result takes over.
template<class Op>
Vector inPlace(Vector&& v, Op op) {
    RealArray& x = LegacyAccess::elements(v);
    ElementwiseDispatch::transform(x.begin(), x.end(), x.begin(), op);
    return std::move(v);
}

template<class Op>
Vector inPlace(Vector&& a, Vector const& b, Op op) {
    RealArray& x = LegacyAccess::elements(a);
    ElementwiseDispatch::transform(x.begin(), x.end(), LegacyAccess::elements(b).begin(), x.begin(), op);
    return std::move(a);
}

// What a copy of the operand and the form in place would give, written in one pass.
template<class Op>
Vector fresh(Vector const& v, Op op) {
    VectorData const& source = LegacyAccess::data(v);
    RealArray const& x = source.values;
    Vector result = LegacyAccess::uninitialisedVector(x.length(), source.orientation);
    ElementwiseDispatch::transform(x.begin(), x.end(), LegacyAccess::elements(result).begin(), op);
    return result;
}

template<class Op>
Vector fresh(Vector const& a, Vector const& b, Op op) {
    VectorData const& source = LegacyAccess::data(a);
    RealArray const& x = source.values;
    Vector result = LegacyAccess::uninitialisedVector(x.length(), source.orientation);
    ElementwiseDispatch::transform(x.begin(), x.end(), LegacyAccess::elements(b).begin(),
                                   LegacyAccess::elements(result).begin(), op);
    return result;
}

template<class Op>
void assignInPlace(RealArray& x, double const* y, Op op) {
    ElementwiseDispatch::transform(x.begin(), x.end(), y, x.begin(), op);
}

} // namespace

// The operations hold the scalar by value: it may be an element of the vector that is being written.

Vector operator*(Vector&& a, Vector const& b) {
    return inPlace(std::move(a), b, Multiply());
}

Vector operator*(Vector&& a, Vector&& b) {
    return inPlace(std::move(a), b, Multiply());
}

Vector operator*(Vector const& a, Vector&& b) {
    return inPlace(std::move(b), a, Multiply());
}

Vector operator*(Vector const& a, Vector const& b) {
    return fresh(a, b, Multiply());
}

Vector operator*(Vector&& v, double const& s) {
    return inPlace(std::move(v), WithRightScalar<Multiply>{s});
}

Vector operator*(Vector const& v, double const& s) {
    return fresh(v, WithRightScalar<Multiply>{s});
}

// Callers rely on this form leaving `v` as it is, although they gave it away.
Vector operator*(double const& s, Vector&& v) {
    return fresh(v, WithRightScalar<Multiply>{s});
}

Vector operator*(double const& s, Vector const& v) {
    return fresh(v, WithRightScalar<Multiply>{s});
}

Vector operator+(Vector&& v, double const& s) {
    return inPlace(std::move(v), WithRightScalar<Add>{s});
}

Vector operator+(Vector const& v, double const& s) {
    return fresh(v, WithRightScalar<Add>{s});
}

Vector operator+(double const& s, Vector&& v) {
    return inPlace(std::move(v), WithLeftScalar<Add>{s});
}

Vector operator+(double const& s, Vector const& v) {
    return fresh(v, WithLeftScalar<Add>{s});
}

Vector operator-(Vector&& v, double const& s) {
    return inPlace(std::move(v), WithRightScalar<Subtract>{s});
}

Vector operator-(Vector const& v, double const& s) {
    return fresh(v, WithRightScalar<Subtract>{s});
}

Vector operator-(double const& s, Vector&& v) {
    return inPlace(std::move(v), WithLeftScalar<Subtract>{s});
}

Vector operator-(double const& s, Vector const& v) {
    return fresh(v, WithLeftScalar<Subtract>{s});
}

Vector operator/(Vector&& v, double const& s) {
    return inPlace(std::move(v), WithRightScalar<Divide>{s});
}

Vector operator/(Vector const& v, double const& s) {
    return fresh(v, WithRightScalar<Divide>{s});
}

// Callers rely on the copy not being negated.
Vector Vector::operator-() const& {
    return *this;
}

Vector Vector::operator-() && {
    return inPlace(std::move(*this), Negate());
}

Vector& Vector::operator+=(Vector const& b) {
    assignInPlace(LegacyAccess::elements(*this), LegacyAccess::elements(b).begin(), Add());
    return *this;
}

Vector& Vector::operator-=(Vector const& b) {
    assignInPlace(LegacyAccess::elements(*this), LegacyAccess::elements(b).begin(), Subtract());
    return *this;
}

Vector& Vector::operator+=(AbstractVector const& b) {
    assignInPlace(LegacyAccess::elements(*this), b.data(), Add());
    return *this;
}

Vector& Vector::operator-=(AbstractVector const& b) {
    assignInPlace(LegacyAccess::elements(*this), b.data(), Subtract());
    return *this;
}

} // namespace Tervane::Math

// The vector-by-vector sums and differences, which are global.

Vector operator+(Vector&& a, Vector const& b) {
    return Tervane::Math::inPlace(std::move(a), b, Tervane::Math::Detail::Add());
}

Vector operator+(Vector&& a, Vector&& b) {
    return Tervane::Math::inPlace(std::move(a), b, Tervane::Math::Detail::Add());
}

Vector operator+(Vector const& a, Vector&& b) {
    return Tervane::Math::inPlace(std::move(b), a, Tervane::Math::Detail::Add());
}

Vector operator+(Vector const& a, Vector const& b) {
    return Tervane::Math::fresh(a, b, Tervane::Math::Detail::Add());
}

Vector operator-(Vector&& a, Vector const& b) {
    return Tervane::Math::inPlace(std::move(a), b, Tervane::Math::Detail::Subtract());
}

Vector operator-(Vector&& a, Vector&& b) {
    return Tervane::Math::inPlace(std::move(a), b, Tervane::Math::Detail::Subtract());
}

// Callers rely on this form walking `a` while it writes over `b`: of a longer `b`, the tail stays.
Vector operator-(Vector const& a, Vector&& b) {
    using namespace Tervane::Math::Detail;
    RealArray const& x = LegacyAccess::elements(a);
    RealArray& y = LegacyAccess::elements(b);
    Tervane::Math::ElementwiseDispatch::transform(x.begin(), x.end(), y.begin(), y.begin(), Subtract());
    return std::move(b);
}

Vector operator-(Vector const& a, Vector const& b) {
    return Tervane::Math::fresh(a, b, Tervane::Math::Detail::Subtract());
}
