#include "foundation/Operations.h"
#include "legacy/Access.h"
#include "legacy/VectorSum.h"

#include <Math/Vector.h>

#include <utility>

using Tervane::Math::Vector;

namespace Tervane::Math {

namespace {

using Detail::Add;
using Detail::Divide;
using Detail::Multiply;
using Detail::Negate;
using Detail::Subtract;
using Detail::transform;
using Detail::transformed;
using Detail::transformRight;
using Detail::withLeft;
using Detail::withRight;

} // namespace

Vector operator*(Vector&& a, Vector const& b) {
    return transformed(std::move(a), b, Multiply());
}

Vector operator*(Vector&& a, Vector&& b) {
    return transformed(std::move(a), b, Multiply());
}

Vector operator*(Vector const& a, Vector&& b) {
    return transformed(std::move(b), a, Multiply());
}

Vector operator*(Vector const& a, Vector const& b) {
    return transformed(a, b, Multiply());
}

Vector operator*(Vector&& v, double const& s) {
    return transformed(std::move(v), withRight<Multiply>(s));
}

Vector operator*(Vector const& v, double const& s) {
    return transformed(v, withRight<Multiply>(s));
}

// This form copies, and leaves an rvalue `v` as it is (compatibility C71).
Vector operator*(double const& s, Vector&& v) {
    return transformed(v, withRight<Multiply>(s));
}

Vector operator*(double const& s, Vector const& v) {
    return transformed(v, withRight<Multiply>(s));
}

Vector operator+(Vector&& v, double const& s) {
    return transformed(std::move(v), withRight<Add>(s));
}

Vector operator+(Vector const& v, double const& s) {
    return transformed(v, withRight<Add>(s));
}

Vector operator+(double const& s, Vector&& v) {
    return transformed(std::move(v), withLeft<Add>(s));
}

Vector operator+(double const& s, Vector const& v) {
    return transformed(v, withLeft<Add>(s));
}

Vector operator-(Vector&& v, double const& s) {
    return transformed(std::move(v), withRight<Subtract>(s));
}

Vector operator-(Vector const& v, double const& s) {
    return transformed(v, withRight<Subtract>(s));
}

Vector operator-(double const& s, Vector&& v) {
    return transformed(std::move(v), withLeft<Subtract>(s));
}

Vector operator-(double const& s, Vector const& v) {
    return transformed(v, withLeft<Subtract>(s));
}

Vector operator/(Vector&& v, double const& s) {
    return transformed(std::move(v), withRight<Divide>(s));
}

Vector operator/(Vector const& v, double const& s) {
    return transformed(v, withRight<Divide>(s));
}

// A copy that is not negated (compatibility C70).
Vector Vector::operator-() const& {
    return *this;
}

Vector Vector::operator-() && {
    return transformed(std::move(*this), Negate());
}

Vector& Vector::operator+=(Vector const& b) {
    return transform(*this, b, Add());
}

Vector& Vector::operator-=(Vector const& b) {
    return transform(*this, b, Subtract());
}

Vector& Vector::operator+=(AbstractVector const& b) {
    return transform(*this, b, Add());
}

Vector& Vector::operator-=(AbstractVector const& b) {
    return transform(*this, b, Subtract());
}

} // namespace Tervane::Math

// The vector-by-vector sums and differences, which are global.

Vector operator+(Vector&& a, Vector const& b) {
    return Tervane::Math::transformed(std::move(a), b, Tervane::Math::Add());
}

Vector operator+(Vector&& a, Vector&& b) {
    return Tervane::Math::transformed(std::move(a), b, Tervane::Math::Add());
}

Vector operator+(Vector const& a, Vector&& b) {
    return Tervane::Math::transformed(std::move(b), a, Tervane::Math::Add());
}

Vector operator+(Vector const& a, Vector const& b) {
    return Tervane::Math::transformed(a, b, Tervane::Math::Add());
}

Vector operator-(Vector&& a, Vector const& b) {
    return Tervane::Math::transformed(std::move(a), b, Tervane::Math::Subtract());
}

Vector operator-(Vector&& a, Vector&& b) {
    return Tervane::Math::transformed(std::move(a), b, Tervane::Math::Subtract());
}

// Runs over `a` while it writes into `b`: the tail of a longer `b` stays (compatibility C72). It stands in
// the global namespace (compatibility C74).
Vector operator-(Vector const& a, Vector&& b) {
    return std::move(Tervane::Math::transformRight(a, b, Tervane::Math::Subtract()));
}

Vector operator-(Vector const& a, Vector const& b) {
    return Tervane::Math::transformed(a, b, Tervane::Math::Subtract());
}
