#pragma once

#include "foundation/ElementwiseDispatch.h"

#include <concepts>
#include <cstddef>
#include <type_traits>
#include <utility>

namespace Tervane::Math::Detail {

/// The way into a container, a specialisation for each of them beside its generation's Access.h:
/// `elements(x)`, a pointer to the first element; `length(x)`; and `shapedAs(x)`, a new container for the
/// caller to write, of the length and the orientation of `x`.
template<class Container>
struct AccessTo;

/// out[i] = op(in[i]). An operation on real numbers alone does to both parts of a complex number what it
/// would do to a real one, so it goes over twice as many doubles.
template<class In, class Out, class Op>
void transformElements(In const* in, std::size_t n, Out* out, Op op) {
    if constexpr (std::invocable<Op, In>) {
        ElementwiseDispatch::transform(in, in + n, out, op);
    } else {
        auto const* const parts = reinterpret_cast<double const*>(in);
        ElementwiseDispatch::transform(parts, parts + 2 * n, reinterpret_cast<double*>(out), op);
    }
}

/// @name An operation on every element, in place or fresh
/// `transform` works in the storage of its receiver and returns it. `transformed` makes a result: of an
/// rvalue in the storage that it gives away, of anything else in new storage, in one pass over memory. The
/// first operand is walked from its beginning to its end, the second one in step. An operation holds its
/// scalar by value, since callers may pass an element of the receiver.
/// @{

/// x[k] = op(x[k])
template<class Container, class Op>
Container& transform(Container& x, Op op) {
    using Access = AccessTo<Container>;
    transformElements(Access::elements(x), Access::length(x), Access::elements(x), op);
    return x;
}

/// x[k] = op(x[k], y[k])
template<class Container, class Operand, class Op>
Container& transform(Container& x, Operand const& y, Op op) {
    using Access = AccessTo<Container>;
    auto* const first = Access::elements(x);
    ElementwiseDispatch::transform(first, first + Access::length(x), AccessTo<Operand>::elements(y), first,
                                   op);
    return x;
}

/// y[k] = op(x[k], y[k]) over the length of x: elements of `y` beyond it stay as they are.
template<class Operand, class Container, class Op>
Container& transformRight(Operand const& x, Container& y, Op op) {
    auto const* const first = AccessTo<Operand>::elements(x);
    auto* const out = AccessTo<Container>::elements(y);
    ElementwiseDispatch::transform(first, first + AccessTo<Operand>::length(x), out, out, op);
    return y;
}

/// op(x[k]) in the storage of x
template<class Container, class Op>
requires(!std::is_reference_v<Container>) Container transformed(Container&& x, Op op) {
    return std::move(transform(x, op));
}

/// op(x[k])
template<class Operand, class Op>
auto transformed(Operand const& x, Op op) {
    using Access = AccessTo<Operand>;
    auto result = Access::shapedAs(x);
    transformElements(Access::elements(x), Access::length(x), Access::elements(result), op);
    return result;
}

/// op(x[k], y[k]) in the storage of x
template<class Container, class Operand, class Op>
requires(!std::is_reference_v<Container>) Container transformed(Container&& x, Operand const& y, Op op) {
    return std::move(transform(x, y, op));
}

/// op(x[k], y[k]) with the length and the orientation of `shape`
template<class Shape, class Left, class Right, class Op>
auto transformedInShapeOf(Shape const& shape, Left const& x, Right const& y, Op op) {
    using Access = AccessTo<Shape>;
    auto result = Access::shapedAs(shape);
    auto const* const first = AccessTo<Left>::elements(x);
    ElementwiseDispatch::transform(first, first + Access::length(shape), AccessTo<Right>::elements(y),
                                   Access::elements(result), op);
    return result;
}

/// op(x[k], y[k])
template<class Left, class Right, class Op>
auto transformed(Left const& x, Right const& y, Op op) {
    return transformedInShapeOf(x, x, y, op);
}
/// @}

} // namespace Tervane::Math::Detail
