#include "containers/Access.h"
#include "foundation/Operations.h"
#include "foundation/Transform.h"

#include <Math/Vector2.h>

#include <cstddef>
#include <utility>

// Every operator is the choice of a receiver, an operation and an order of operands.

namespace Tervane::Math {

namespace {

using Detail::Add;
using Detail::Divide;
using Detail::Multiply;
using Detail::Negate;
using Detail::Subtract;
using Detail::transform;
using Detail::transformed;
using Detail::transformedInShapeOf;
using Detail::transformRight;
using Detail::withLeft;
using Detail::withRight;

} // namespace

Vector2& Vector2::operator+=(Vector2 const& right) {
    return transform(*this, right, Add());
}
Vector2& Vector2::operator+=(VectorView2 const& right) {
    return transform(*this, right, Add());
}
Vector2& Vector2::operator+=(double const& right) {
    return transform(*this, withRight<Add>(right));
}
Vector2& Vector2::operator+=(int right) {
    return transform(*this, withRight<Add>(right));
}

Vector2& Vector2::operator-=(Vector2 const& right) {
    return transform(*this, right, Subtract());
}
Vector2& Vector2::operator-=(VectorView2 const& right) {
    return transform(*this, right, Subtract());
}
Vector2& Vector2::operator-=(double const& right) {
    return transform(*this, withRight<Subtract>(right));
}
Vector2& Vector2::operator-=(int right) {
    return transform(*this, withRight<Subtract>(right));
}

Vector2& Vector2::operator*=(Vector2 const& right) {
    return transform(*this, right, Multiply());
}
Vector2& Vector2::operator*=(VectorView2 const& right) {
    return transform(*this, right, Multiply());
}
Vector2& Vector2::operator*=(double const& right) {
    return transform(*this, withRight<Multiply>(right));
}
Vector2& Vector2::operator*=(int right) {
    return transform(*this, withRight<Multiply>(right));
}

Vector2& Vector2::operator/=(Vector2 const& right) {
    return transform(*this, right, Divide());
}
Vector2& Vector2::operator/=(VectorView2 const& right) {
    return transform(*this, right, Divide());
}
Vector2& Vector2::operator/=(double const& right) {
    return transform(*this, withRight<Divide>(right));
}
Vector2& Vector2::operator/=(int right) {
    return transform(*this, withRight<Divide>(right));
}
Vector2& Vector2::operator/=(std::size_t right) {
    return transform(*this, withRight<Divide>(static_cast<double>(right)));
}

Vector2 Vector2::operator-() const& {
    return transformed(*this, Negate());
}

Vector2& Vector2::operator-() && {
    return transform(*this, Negate());
}

Vector2 operator+(Vector2&& left, Vector2&& right) {
    return transformed(std::move(left), right, Add());
}
Vector2 operator+(Vector2&& left, Vector2 const& right) {
    return transformed(std::move(left), right, Add());
}
Vector2 operator+(Vector2&& left, VectorView2 const& right) {
    return transformed(std::move(left), right, Add());
}
Vector2 operator+(Vector2&& left, double const& right) {
    return transformed(std::move(left), withRight<Add>(right));
}
Vector2 operator+(Vector2&& left, int right) {
    return transformed(std::move(left), withRight<Add>(right));
}
Vector2 operator+(Vector2 const& left, Vector2&& right) {
    return transformed(std::move(right), left, Add());
}
Vector2 operator+(Vector2 const& left, Vector2 const& right) {
    return transformed(left, right, Add());
}
Vector2 operator+(Vector2 const& left, VectorView2 const& right) {
    return transformed(left, right, Add());
}
Vector2 operator+(Vector2 const& left, double const& right) {
    return transformed(left, withRight<Add>(right));
}
Vector2 operator+(Vector2 const& left, int right) {
    return left + static_cast<double>(right);
}
Vector2 operator+(VectorView2 const& left, Vector2&& right) {
    return transformed(std::move(right), left, Add());
}
Vector2 operator+(VectorView2 const& left, Vector2 const& right) {
    return transformed(right, left, Add());
}
Vector2 operator+(double const& left, Vector2&& right) {
    return std::move(right) + left;
}
Vector2 operator+(double const& left, Vector2 const& right) {
    return right + left;
}
Vector2 operator+(int left, Vector2&& right) {
    return std::move(right) + left;
}
Vector2 operator+(int left, Vector2 const& right) {
    return right + left;
}

Vector2 operator-(Vector2&& left, Vector2&& right) {
    return transformed(std::move(left), right, Subtract());
}
Vector2 operator-(Vector2&& left, Vector2 const& right) {
    return transformed(std::move(left), right, Subtract());
}
Vector2 operator-(Vector2&& left, VectorView2 const& right) {
    return transformed(std::move(left), right, Subtract());
}
Vector2 operator-(Vector2&& left, double const& right) {
    return transformed(std::move(left), withRight<Subtract>(right));
}
Vector2 operator-(Vector2&& left, int right) {
    return transformed(std::move(left), withRight<Subtract>(right));
}
Vector2 operator-(Vector2 const& left, Vector2 const& right) {
    return transformed(left, right, Subtract());
}
Vector2 operator-(Vector2 const& left, VectorView2 const& right) {
    return transformed(left, right, Subtract());
}
Vector2 operator-(Vector2 const& left, double const& right) {
    return transformed(left, withRight<Subtract>(right));
}
Vector2 operator-(Vector2 const& left, int right) {
    return left - static_cast<double>(right);
}
Vector2 operator-(VectorView2 const& left, Vector2 const& right) {
    return transformedInShapeOf(right, left, right, Subtract());
}
Vector2 operator-(VectorView2 const& left, double const& right) {
    return transformed(left, withRight<Subtract>(right));
}
Vector2 operator-(VectorView2 const& left, int right) {
    return left - static_cast<double>(right);
}
Vector2 operator-(double const& left, Vector2 const& right) {
    return transformed(right, withLeft<Subtract>(left));
}
Vector2 operator-(double const& left, VectorView2 const& right) {
    return transformed(right, withLeft<Subtract>(left));
}
Vector2 operator-(int left, Vector2 const& right) {
    return static_cast<double>(left) - right;
}
Vector2 operator-(int left, VectorView2 const& right) {
    return static_cast<double>(left) - right;
}

// These four leave the argument negated and return a new vector (compatibility C31).
Vector2 operator-(Vector2 const& left, Vector2&& right) {
    return std::as_const(-std::move(right)) + left;
}
Vector2 operator-(VectorView2 const& left, Vector2&& right) {
    return std::as_const(-std::move(right)) + left;
}
Vector2 operator-(double const& left, Vector2&& right) {
    double const scalar = left; // may be an element, which is about to be negated
    return std::as_const(-std::move(right)) + scalar;
}
Vector2 operator-(int left, Vector2&& right) {
    return std::as_const(-std::move(right)) + left;
}

Vector2 operator*(Vector2&& left, Vector2&& right) {
    return transformed(std::move(left), right, Multiply());
}
Vector2 operator*(Vector2&& left, Vector2 const& right) {
    return transformed(std::move(left), right, Multiply());
}
Vector2 operator*(Vector2&& left, VectorView2 const& right) {
    return transformed(std::move(left), right, Multiply());
}
Vector2 operator*(Vector2&& left, double const& right) {
    return transformed(std::move(left), withRight<Multiply>(right));
}
Vector2 operator*(Vector2&& left, int right) {
    return transformed(std::move(left), withRight<Multiply>(right));
}
Vector2 operator*(Vector2 const& left, Vector2&& right) {
    return transformed(std::move(right), left, Multiply());
}
Vector2 operator*(Vector2 const& left, Vector2 const& right) {
    return transformed(left, right, Multiply());
}
Vector2 operator*(Vector2 const& left, VectorView2 const& right) {
    return transformed(left, right, Multiply());
}
Vector2 operator*(Vector2 const& left, double const& right) {
    return transformed(left, withRight<Multiply>(right));
}
Vector2 operator*(Vector2 const& left, int right) {
    return left * static_cast<double>(right);
}
Vector2 operator*(VectorView2 const& left, Vector2&& right) {
    return transformed(std::move(right), left, Multiply());
}
Vector2 operator*(VectorView2 const& left, Vector2 const& right) {
    return transformed(right, left, Multiply());
}
Vector2 operator*(double const& left, Vector2&& right) {
    return std::move(right) * left;
}
Vector2 operator*(double const& left, Vector2 const& right) {
    return right * left;
}
Vector2 operator*(int left, Vector2&& right) {
    return std::move(right) * left;
}
Vector2 operator*(int left, Vector2 const& right) {
    return right * left;
}

Vector2 operator/(Vector2&& left, Vector2&& right) {
    return transformed(std::move(left), right, Divide());
}
Vector2 operator/(Vector2&& left, Vector2 const& right) {
    return transformed(std::move(left), right, Divide());
}
Vector2 operator/(Vector2&& left, VectorView2 const& right) {
    return transformed(std::move(left), right, Divide());
}
Vector2 operator/(Vector2&& left, double const& right) {
    return transformed(std::move(left), withRight<Divide>(right));
}
Vector2 operator/(Vector2&& left, int right) {
    return transformed(std::move(left), withRight<Divide>(right));
}
Vector2 operator/(Vector2&& left, std::size_t right) {
    return std::move(left /= right);
}
// These two run over the left operand's length: elements of `right` past it stay as they are (compatibility
// C32).
Vector2 operator/(Vector2 const& left, Vector2&& right) {
    return std::move(transformRight(left, right, Divide()));
}
Vector2 operator/(Vector2 const& left, Vector2 const& right) {
    return transformed(left, right, Divide());
}
Vector2 operator/(Vector2 const& left, VectorView2 const& right) {
    return transformed(left, right, Divide());
}
Vector2 operator/(Vector2 const& left, double const& right) {
    return transformed(left, withRight<Divide>(right));
}
Vector2 operator/(Vector2 const& left, int right) {
    return left / static_cast<double>(right);
}
Vector2 operator/(Vector2 const& left, std::size_t right) {
    return left / static_cast<double>(right);
}
Vector2 operator/(VectorView2 const& left, Vector2&& right) {
    return std::move(transformRight(left, right, Divide()));
}
Vector2 operator/(VectorView2 const& left, Vector2 const& right) {
    return transformedInShapeOf(right, left, right, Divide());
}
Vector2 operator/(double const& left, Vector2&& right) {
    return transformed(std::move(right), withLeft<Divide>(left));
}
Vector2 operator/(double const& left, Vector2 const& right) {
    return transformed(right, withLeft<Divide>(left));
}
Vector2 operator/(int left, Vector2&& right) {
    return transformed(std::move(right), withLeft<Divide>(left));
}
Vector2 operator/(int left, Vector2 const& right) {
    return static_cast<double>(left) / right;
}

} // namespace Tervane::Math
