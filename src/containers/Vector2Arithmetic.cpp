#include "containers/Access.h"
#include "foundation/ElementwiseDispatch.h"
#include "foundation/Operations.h"

#include <Math/Vector2.h>

#include <cstddef>
#include <utility>

// Every operator is the choice of a receiver, an operation and an order of operands. A receiver is either an
// rvalue's own storage or new storage in the shape of an operand; the templates below make that choice, and
// the dispatch does the rest in one pass over memory.

namespace Tervane::Math {

namespace {

using Detail::Add;
using Detail::ContainerAccess;
using Detail::Divide;
using Detail::Multiply;
using Detail::Negate;
using Detail::Subtract;
using Detail::WithLeftScalar;
using Detail::WithRightScalar;

/// A vector or a view, walked from its beginning.
template<class Operand>
concept Walkable = requires(Operand const& operand) {
    operand.data();
    operand.length();
};

double const* endOf(Walkable auto const& operand) {
    return operand.data() + operand.length();
}

/// `receiver` itself becomes receiver[k] op right[k].
template<class Op>
Vector2& inPlace(Vector2& receiver, Walkable auto const& right) {
    ElementwiseDispatch::transform(std::as_const(receiver).data(), endOf(receiver), right.data(),
                                   receiver.data(), Op());
    return receiver;
}

/// `receiver` itself becomes receiver[k] op scalar. The scalar is a copy: callers may pass one of the
/// elements.
template<class Op>
Vector2& inPlace(Vector2& receiver, double scalar) {
    ElementwiseDispatch::transform(std::as_const(receiver).data(), endOf(receiver), receiver.data(),
                                   WithRightScalar<Op>{scalar});
    return receiver;
}

/// `receiver` itself becomes scalar op receiver[k].
template<class Op>
Vector2& inPlaceAfter(double scalar, Vector2& receiver) {
    ElementwiseDispatch::transform(std::as_const(receiver).data(), endOf(receiver), receiver.data(),
                                   WithLeftScalar<Op>{scalar});
    return receiver;
}

/// A vector for the result, in the shape of `model`.
Vector2 shapedAs(Walkable auto const& model) {
    return ContainerAccess::uninitialised(model.length(), ContainerAccess::orientation(model));
}

/// A new vector in the shape of `shape`, left[k] op right[k].
template<class Op>
Vector2 fresh(Walkable auto const& shape, Walkable auto const& left, Walkable auto const& right) {
    Vector2 result = shapedAs(shape);
    ElementwiseDispatch::transform(left.data(), left.data() + shape.length(), right.data(), result.data(),
                                   Op());
    return result;
}

/// A new vector in the shape of `model`, `op` of each of its elements.
template<class Op>
Vector2 fresh(Walkable auto const& model, Op op) {
    Vector2 result = shapedAs(model);
    ElementwiseDispatch::transform(model.data(), endOf(model), result.data(), op);
    return result;
}

/// left[k] / right[k] over the length of `left`, in the storage of `right`, which becomes the result. Callers
/// rely on the walk over the left operand: elements of `right` beyond it stay as they are.
Vector2 divideIntoRight(Walkable auto const& left, Vector2& right) {
    ElementwiseDispatch::transform(left.data(), endOf(left), std::as_const(right).data(), right.data(),
                                   Divide());
    return std::move(right);
}

} // namespace

Vector2& Vector2::operator+=(Vector2 const& right) {
    return inPlace<Add>(*this, right);
}
Vector2& Vector2::operator+=(VectorView2 const& right) {
    return inPlace<Add>(*this, right);
}
Vector2& Vector2::operator+=(double const& right) {
    return inPlace<Add>(*this, right);
}
Vector2& Vector2::operator+=(int right) {
    return inPlace<Add>(*this, right);
}

Vector2& Vector2::operator-=(Vector2 const& right) {
    return inPlace<Subtract>(*this, right);
}
Vector2& Vector2::operator-=(VectorView2 const& right) {
    return inPlace<Subtract>(*this, right);
}
Vector2& Vector2::operator-=(double const& right) {
    return inPlace<Subtract>(*this, right);
}
Vector2& Vector2::operator-=(int right) {
    return inPlace<Subtract>(*this, right);
}

Vector2& Vector2::operator*=(Vector2 const& right) {
    return inPlace<Multiply>(*this, right);
}
Vector2& Vector2::operator*=(VectorView2 const& right) {
    return inPlace<Multiply>(*this, right);
}
Vector2& Vector2::operator*=(double const& right) {
    return inPlace<Multiply>(*this, right);
}
Vector2& Vector2::operator*=(int right) {
    return inPlace<Multiply>(*this, right);
}

Vector2& Vector2::operator/=(Vector2 const& right) {
    return inPlace<Divide>(*this, right);
}
Vector2& Vector2::operator/=(VectorView2 const& right) {
    return inPlace<Divide>(*this, right);
}
Vector2& Vector2::operator/=(double const& right) {
    return inPlace<Divide>(*this, right);
}
Vector2& Vector2::operator/=(int right) {
    return inPlace<Divide>(*this, right);
}
Vector2& Vector2::operator/=(std::size_t right) {
    return inPlace<Divide>(*this, static_cast<double>(right));
}

Vector2 Vector2::operator-() const& {
    return fresh(*this, Negate());
}

Vector2& Vector2::operator-() && {
    ElementwiseDispatch::transform(std::as_const(*this).data(), endOf(*this), data(), Negate());
    return *this;
}

Vector2 operator+(Vector2&& left, Vector2&& right) {
    return std::move(inPlace<Add>(left, right));
}
Vector2 operator+(Vector2&& left, Vector2 const& right) {
    return std::move(inPlace<Add>(left, right));
}
Vector2 operator+(Vector2&& left, VectorView2 const& right) {
    return std::move(inPlace<Add>(left, right));
}
Vector2 operator+(Vector2&& left, double const& right) {
    return std::move(inPlace<Add>(left, right));
}
Vector2 operator+(Vector2&& left, int right) {
    return std::move(inPlace<Add>(left, right));
}
Vector2 operator+(Vector2 const& left, Vector2&& right) {
    return std::move(inPlace<Add>(right, left));
}
Vector2 operator+(Vector2 const& left, Vector2 const& right) {
    return fresh<Add>(left, left, right);
}
Vector2 operator+(Vector2 const& left, VectorView2 const& right) {
    return fresh<Add>(left, left, right);
}
Vector2 operator+(Vector2 const& left, double const& right) {
    return fresh(left, WithRightScalar<Add>{right});
}
Vector2 operator+(Vector2 const& left, int right) {
    return left + static_cast<double>(right);
}
Vector2 operator+(VectorView2 const& left, Vector2&& right) {
    return std::move(inPlace<Add>(right, left));
}
Vector2 operator+(VectorView2 const& left, Vector2 const& right) {
    return fresh<Add>(right, right, left);
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
    return std::move(inPlace<Subtract>(left, right));
}
Vector2 operator-(Vector2&& left, Vector2 const& right) {
    return std::move(inPlace<Subtract>(left, right));
}
Vector2 operator-(Vector2&& left, VectorView2 const& right) {
    return std::move(inPlace<Subtract>(left, right));
}
Vector2 operator-(Vector2&& left, double const& right) {
    return std::move(inPlace<Subtract>(left, right));
}
Vector2 operator-(Vector2&& left, int right) {
    return std::move(inPlace<Subtract>(left, right));
}
Vector2 operator-(Vector2 const& left, Vector2 const& right) {
    return fresh<Subtract>(left, left, right);
}
Vector2 operator-(Vector2 const& left, VectorView2 const& right) {
    return fresh<Subtract>(left, left, right);
}
Vector2 operator-(Vector2 const& left, double const& right) {
    return fresh(left, WithRightScalar<Subtract>{right});
}
Vector2 operator-(Vector2 const& left, int right) {
    return left - static_cast<double>(right);
}
Vector2 operator-(VectorView2 const& left, Vector2 const& right) {
    return fresh<Subtract>(right, left, right);
}
Vector2 operator-(VectorView2 const& left, double const& right) {
    return fresh(left, WithRightScalar<Subtract>{right});
}
Vector2 operator-(VectorView2 const& left, int right) {
    return left - static_cast<double>(right);
}
Vector2 operator-(double const& left, Vector2 const& right) {
    return fresh(right, WithLeftScalar<Subtract>{left});
}
Vector2 operator-(double const& left, VectorView2 const& right) {
    return fresh(right, WithLeftScalar<Subtract>{left});
}
Vector2 operator-(int left, Vector2 const& right) {
    return static_cast<double>(left) - right;
}
Vector2 operator-(int left, VectorView2 const& right) {
    return static_cast<double>(left) - right;
}

// Callers rely on these four: the argument is left negated, and the result is new.
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
    return std::move(inPlace<Multiply>(left, right));
}
Vector2 operator*(Vector2&& left, Vector2 const& right) {
    return std::move(inPlace<Multiply>(left, right));
}
Vector2 operator*(Vector2&& left, VectorView2 const& right) {
    return std::move(inPlace<Multiply>(left, right));
}
Vector2 operator*(Vector2&& left, double const& right) {
    return std::move(inPlace<Multiply>(left, right));
}
Vector2 operator*(Vector2&& left, int right) {
    return std::move(inPlace<Multiply>(left, right));
}
Vector2 operator*(Vector2 const& left, Vector2&& right) {
    return std::move(inPlace<Multiply>(right, left));
}
Vector2 operator*(Vector2 const& left, Vector2 const& right) {
    return fresh<Multiply>(left, left, right);
}
Vector2 operator*(Vector2 const& left, VectorView2 const& right) {
    return fresh<Multiply>(left, left, right);
}
Vector2 operator*(Vector2 const& left, double const& right) {
    return fresh(left, WithRightScalar<Multiply>{right});
}
Vector2 operator*(Vector2 const& left, int right) {
    return left * static_cast<double>(right);
}
Vector2 operator*(VectorView2 const& left, Vector2&& right) {
    return std::move(inPlace<Multiply>(right, left));
}
Vector2 operator*(VectorView2 const& left, Vector2 const& right) {
    return fresh<Multiply>(right, right, left);
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
    return std::move(inPlace<Divide>(left, right));
}
Vector2 operator/(Vector2&& left, Vector2 const& right) {
    return std::move(inPlace<Divide>(left, right));
}
Vector2 operator/(Vector2&& left, VectorView2 const& right) {
    return std::move(inPlace<Divide>(left, right));
}
Vector2 operator/(Vector2&& left, double const& right) {
    return std::move(inPlace<Divide>(left, right));
}
Vector2 operator/(Vector2&& left, int right) {
    return std::move(inPlace<Divide>(left, right));
}
Vector2 operator/(Vector2&& left, std::size_t right) {
    return std::move(left /= right);
}
Vector2 operator/(Vector2 const& left, Vector2&& right) {
    return divideIntoRight(left, right);
}
Vector2 operator/(Vector2 const& left, Vector2 const& right) {
    return fresh<Divide>(left, left, right);
}
Vector2 operator/(Vector2 const& left, VectorView2 const& right) {
    return fresh<Divide>(left, left, right);
}
Vector2 operator/(Vector2 const& left, double const& right) {
    return fresh(left, WithRightScalar<Divide>{right});
}
Vector2 operator/(Vector2 const& left, int right) {
    return left / static_cast<double>(right);
}
Vector2 operator/(Vector2 const& left, std::size_t right) {
    return left / static_cast<double>(right);
}
Vector2 operator/(VectorView2 const& left, Vector2&& right) {
    return divideIntoRight(left, right);
}
Vector2 operator/(VectorView2 const& left, Vector2 const& right) {
    return fresh<Divide>(right, left, right);
}
Vector2 operator/(double const& left, Vector2&& right) {
    return std::move(inPlaceAfter<Divide>(left, right));
}
Vector2 operator/(double const& left, Vector2 const& right) {
    return fresh(right, WithLeftScalar<Divide>{left});
}
Vector2 operator/(int left, Vector2&& right) {
    return std::move(inPlaceAfter<Divide>(left, right));
}
Vector2 operator/(int left, Vector2 const& right) {
    return static_cast<double>(left) / right;
}

} // namespace Tervane::Math
