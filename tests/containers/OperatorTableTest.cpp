// Which combinations of operands exist, and that no other does: callers rely on both. Everything here is
// decided by the compiler.

#include <Math/ComplexVector2.h>
#include <Math/Matrix2.h>
#include <Math/Vector2.h>
#include <Math/VectorView2.h>

#include <gtest/gtest.h>

#include <complex>
#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>

namespace Tervane::Math {

namespace {

struct Plus {
    template<class L, class R>
    auto operator()(L&& l, R&& r) const -> decltype(std::forward<L>(l) + std::forward<R>(r));
};
struct Minus {
    template<class L, class R>
    auto operator()(L&& l, R&& r) const -> decltype(std::forward<L>(l) - std::forward<R>(r));
};
struct Times {
    template<class L, class R>
    auto operator()(L&& l, R&& r) const -> decltype(std::forward<L>(l) * std::forward<R>(r));
};
struct Over {
    template<class L, class R>
    auto operator()(L&& l, R&& r) const -> decltype(std::forward<L>(l) / std::forward<R>(r));
};

/// Whether the operators + - * / exist for two operands, as a text such as "+-*/" or "-".
template<class L, class R>
constexpr bool has(char op) {
    switch (op) {
    case '+':
        return std::is_invocable_v<Plus, L, R>;
    case '-':
        return std::is_invocable_v<Minus, L, R>;
    case '*':
        return std::is_invocable_v<Times, L, R>;
    default:
        return std::is_invocable_v<Over, L, R>;
    }
}

constexpr bool contains(char const* ops, char op) {
    for (; *ops != '\0'; ++ops)
        if (*ops == op)
            return true;
    return false;
}

template<class L, class R>
constexpr bool hasExactly(char const* ops) {
    return has<L, R>('+') == contains(ops, '+') && has<L, R>('-') == contains(ops, '-')
           && has<L, R>('*') == contains(ops, '*') && has<L, R>('/') == contains(ops, '/');
}

using V = Vector2 const&;
using Vr = Vector2&&;
using Vl = Vector2&;
using W = VectorView2 const&;
using d = double const&;
using i = int;
using z = std::size_t;
using C = ComplexVector2 const&;
using Cr = ComplexVector2&&;
using CW = ComplexVectorView2 const&;

constexpr char const* all = "+-*/";
constexpr char const* none = "";

// The table, row by row.
static_assert(hasExactly<Vr, Vr>(all) && hasExactly<Vr, V>(all) && hasExactly<Vr, W>(all));
static_assert(hasExactly<Vr, d>(all) && hasExactly<Vr, i>(all) && hasExactly<Vr, z>("/"));
static_assert(hasExactly<V, Vr>(all) && hasExactly<V, V>(all) && hasExactly<V, W>(all));
static_assert(hasExactly<V, d>(all) && hasExactly<V, i>(all) && hasExactly<V, z>("/"));
static_assert(hasExactly<W, Vr>(all) && hasExactly<W, V>(all) && hasExactly<W, W>(none));
static_assert(hasExactly<W, d>("-") && hasExactly<W, i>("-") && hasExactly<W, z>(none));
static_assert(hasExactly<d, Vr>(all) && hasExactly<d, V>(all) && hasExactly<d, W>("-"));
static_assert(hasExactly<i, Vr>(all) && hasExactly<i, V>(all) && hasExactly<i, W>("-"));
static_assert(hasExactly<z, Vr>(none) && hasExactly<z, V>(none) && hasExactly<z, W>(none));

// A vector that may be changed is an operand like a constant one.
static_assert(hasExactly<Vl, Vl>(all) && hasExactly<Vl, W>(all) && hasExactly<d, Vl>(all));

// Other integers fit several overloads alike.
static_assert(hasExactly<V, long>(none) && hasExactly<V, unsigned>(none) && hasExactly<long, V>(none));
static_assert(hasExactly<V, long long>(none) && hasExactly<W, long>(none));

// Nothing else turns into an operand.
static_assert(hasExactly<V, std::string>(none) && hasExactly<V, double const*>(none)
              && hasExactly<V, std::nullptr_t>(none));
static_assert(hasExactly<V, Matrix2 const&>(none) && hasExactly<Matrix2 const&, Matrix2 const&>(none));
static_assert(hasExactly<Matrix2 const&, d>(none) && hasExactly<V, std::complex<double>>(none));

// Every operator gives a vector by value.
static_assert(std::is_same_v<std::invoke_result_t<Plus, Vr, Vr>, Vector2>);
static_assert(std::is_same_v<std::invoke_result_t<Minus, W, d>, Vector2>);
static_assert(std::is_same_v<std::invoke_result_t<Over, Vr, z>, Vector2>);

// Complex operands.
static_assert(hasExactly<Cr, d>("*/") && hasExactly<C, d>("*/"));
static_assert(hasExactly<d, Cr>("*/") && hasExactly<d, C>("*/"));
static_assert(hasExactly<Cr, V>("*") && hasExactly<C, V>("*") && hasExactly<V, Cr>("*")
              && hasExactly<V, C>("*"));
static_assert(hasExactly<CW, V>("*") && hasExactly<V, CW>(none) && hasExactly<CW, d>(none)
              && hasExactly<d, CW>(none));
static_assert(hasExactly<C, C>(none) && hasExactly<Cr, Cr>(none) && hasExactly<C, CW>(none));
static_assert(hasExactly<C, W>(none) && hasExactly<W, C>(none) && hasExactly<CW, W>(none));

// Compound assignment.
template<class T, class R>
concept PlusAssignable = requires(T& t, R r) {
    { t += static_cast<R>(r) } -> std::same_as<T&>;
};
template<class T, class R>
concept MinusAssignable = requires(T& t, R r) {
    { t -= static_cast<R>(r) } -> std::same_as<T&>;
};
template<class T, class R>
concept TimesAssignable = requires(T& t, R r) {
    { t *= static_cast<R>(r) } -> std::same_as<T&>;
};
template<class T, class R>
concept OverAssignable = requires(T& t, R r) {
    { t /= static_cast<R>(r) } -> std::same_as<T&>;
};
template<class T, class R>
constexpr bool assignsExactly(char const* ops) {
    return PlusAssignable<T, R> == contains(ops, '+') && MinusAssignable<T, R> == contains(ops, '-')
           && TimesAssignable<T, R> == contains(ops, '*') && OverAssignable<T, R> == contains(ops, '/');
}

static_assert(assignsExactly<Vector2, V>(all) && assignsExactly<Vector2, W>(all));
static_assert(assignsExactly<Vector2, d>(all) && assignsExactly<Vector2, i>(all)
              && assignsExactly<Vector2, z>("/"));
static_assert(assignsExactly<Vector2, long>(none) && assignsExactly<Vector2, C>(none));
static_assert(assignsExactly<ComplexVector2, d>("*/") && assignsExactly<ComplexVector2, V>("*"));
static_assert(assignsExactly<ComplexVector2, C>(none) && assignsExactly<ComplexVector2, W>(none));
static_assert(assignsExactly<VectorView2, d>(none) && assignsExactly<Matrix2, d>(none));

// Unary minus.
static_assert(std::is_same_v<decltype(-std::declval<V>()), Vector2>);
static_assert(std::is_same_v<decltype(-std::declval<Vr>()), Vector2&>);
template<class T>
concept Negatable = requires(T t) {
    -static_cast<T>(t);
};
static_assert(!Negatable<W> && !Negatable<C> && !Negatable<Matrix2 const&>);

TEST(OperatorTable, IsExact) {
    // The assertions above hold it; this shows them in the list of tests.
    EXPECT_TRUE((hasExactly<V, z>("/")));
}

} // namespace

} // namespace Tervane::Math
