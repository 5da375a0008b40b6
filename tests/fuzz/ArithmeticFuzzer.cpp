// The operators of both generations, every form of operand that exists, against plain loops; under every
// policy the same bits, and the operands afterwards as the forms leave them.

#include "fuzz/Fuzz.h"

#include <Math/ComplexVector.h>
#include <Math/ComplexVector2.h>
#include <Math/Vector.h>
#include <Math/Vector2.h>
#include <Math/VectorView2.h>
#include <Math/ViewVector.h>

#include <complex>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

namespace Tervane::Math::Fuzz {

namespace {

/// One run's operands.
struct Operands {
    std::vector<double> a;
    std::vector<double> b;
    VectorOrientation orientationA;
    VectorOrientation orientationB;
    double real;
    int integer;
    std::size_t count;

    Vector2 left() const { return Vector2(viewA()); }
    Vector2 right() const { return Vector2(viewB()); }
    VectorView2 viewA() const { return VectorView2(a.data(), a.size(), orientationA); }
    VectorView2 viewB() const { return VectorView2(b.data(), b.size(), orientationB); }
};

Operands operandsOf(Input& input) {
    Operands o;
    std::size_t const n = input.length();
    o.a = input.values(n);
    o.b = input.values(n);
    o.orientationA = input.flag() ? Row : Column;
    o.orientationB = input.flag() ? Row : Column;
    o.real = input.value();
    o.integer = input.flag() ? input.number<std::int8_t>() : input.number<int>();
    o.count = input.flag() ? input.byte() : input.number<std::size_t>();
    return o;
}

template<class Op>
std::vector<double> expected(std::size_t n, Op const& op) {
    std::vector<double> result(n);
    for (std::size_t i = 0; i < n; ++i)
        result[i] = op(i);
    return result;
}

/// Of long vectors a run looks at every fourth form only, from this one on: they take their time.
std::size_t nextForm = 0;

/// `compute` under every policy against `reference`.
template<class Compute>
void compare(std::vector<double> const& reference, Compute const& compute, char const* what) {
    if (reference.size() > 100 && nextForm++ % 4 != 0)
        return;
    requireSameValues(underEveryPolicy(compute, what), reference, what);
}

std::vector<double> negated(std::vector<double> const& values) {
    return expected(values.size(), [&](std::size_t i) { return -values[i]; });
}

template<class Left, class Op, class Right>
concept Computes = requires(Op op, Left left, Right right) {
    op(std::forward<Left>(left), std::forward<Right>(right));
};

/// Whether `right` negates an rvalue right operand that the left one does not lend its storage for.
template<class Op>
constexpr bool isSubtraction = std::is_same_v<Op, std::minus<>>;

template<class Op>
void currentOperators(Operands const& o, Op op) {
    auto const& a = o.a;
    auto const& b = o.b;
    std::size_t const n = a.size();
    auto const both = expected(n, [&](std::size_t i) { return op(a[i], b[i]); });

    // The result's orientation is that of the vector whose storage receives it.
    compare(
        both,
        [&] {
            Vector2 const left = o.left();
            Vector2 result = op(left, o.viewB());
            require(result.orientation() == o.orientationA, "the orientation of V op W");
            require(TestKit::sameBits(TestKit::elementsOf(left), a), "V op W leaves V alone");
            return copyOf(result);
        },
        "V op W");
    compare(
        both,
        [&] {
            Vector2 left = o.left();
            Vector2 const right = o.right();
            Vector2 result = op(left, right);
            require(result.orientation() == o.orientationA, "the orientation of V op V");
            require(TestKit::sameBits(TestKit::elementsOf(left), a), "V op V leaves the left operand alone");
            require(TestKit::sameBits(TestKit::elementsOf(right), b),
                    "V op V leaves the right operand alone");
            return copyOf(result);
        },
        "V op V");
    compare(
        both,
        [&] {
            Vector2 left = o.left();
            double const* const storage = left.data();
            Vector2 result = op(std::move(left), o.right());
            require(result.data() == storage && left.length() == 0,
                    "V&& op V&& takes the left operand's storage");
            require(result.orientation() == o.orientationA, "the orientation of V&& op V&&");
            return copyOf(result);
        },
        "V&& op V&&");
    compare(
        both,
        [&] {
            Vector2 left = o.left();
            Vector2 result = op(std::move(left), o.viewB());
            return copyOf(result);
        },
        "V&& op W");
    compare(
        both,
        [&] {
            Vector2 const left = o.left();
            Vector2 right = o.right();
            Vector2 result = op(left, std::move(right));
            require(result.orientation() == o.orientationB, "the orientation of V op V&&");
            if constexpr (isSubtraction<Op>)
                requireSameValues(TestKit::elementsOf(right), negated(b),
                                  "V - V&& leaves the right operand negated");
            else
                require(right.length() == 0, "V op V&& takes the right operand's storage");
            return copyOf(result);
        },
        "V op V&&");
    compare(
        both,
        [&] {
            Vector2 right = o.right();
            return copyOf(op(o.viewA(), std::move(right)));
        },
        "W op V&&");
    compare(
        both, [&] { return copyOf(op(o.viewA(), o.right())); }, "W op V");
    compare(
        both,
        [&] {
            Vector2 const right = o.right();
            return copyOf(op(o.viewA(), right));
        },
        "W op V const");

    auto const scalars = [&](auto scalar, char const* what) {
        auto const s = static_cast<double>(scalar);
        auto const vectorFirst = expected(n, [&](std::size_t i) { return op(a[i], s); });
        auto const scalarFirst = expected(n, [&](std::size_t i) { return op(s, a[i]); });
        using Scalar = decltype(scalar);
        compare(
            vectorFirst,
            [&] {
                Vector2 const v = o.left();
                return copyOf(op(v, scalar));
            },
            what);
        compare(
            vectorFirst, [&] { return copyOf(op(o.left(), scalar)); }, what);
        if constexpr (!std::is_same_v<Scalar, std::size_t>) {
            compare(
                scalarFirst,
                [&] {
                    Vector2 const v = o.left();
                    return copyOf(op(scalar, v));
                },
                what);
            compare(
                scalarFirst,
                [&] {
                    Vector2 v = o.left();
                    Vector2 result = op(scalar, std::move(v));
                    require(result.orientation() == o.orientationA, "the orientation of scalar op V&&");
                    if constexpr (isSubtraction<Op>)
                        requireSameValues(TestKit::elementsOf(v), negated(a),
                                          "scalar - V&& leaves the operand negated");
                    else
                        require(v.length() == 0, "scalar op V&& takes the operand's storage");
                    return copyOf(result);
                },
                what);
        }
        if constexpr (isSubtraction<Op>) {
            compare(
                vectorFirst, [&] { return copyOf(op(o.viewA(), scalar)); }, what);
            compare(
                scalarFirst, [&] { return copyOf(op(scalar, o.viewA())); }, what);
        }
    };
    scalars(o.real, "a real number and a vector");
    scalars(o.integer, "an integer and a vector");
    if constexpr (std::is_same_v<Op, std::divides<>>)
        scalars(o.count, "a count and a vector");
}

template<class Assign, class Op>
void compoundAssignment(Operands const& o, Assign assign, Op op) {
    auto const& a = o.a;
    auto const& b = o.b;
    std::size_t const n = a.size();
    auto const apply = [&](auto const& right) {
        return [&] {
            Vector2 v = o.left();
            require(&assign(v, right) == &v, "an assignment gives the vector");
            require(v.orientation() == o.orientationA, "an assignment keeps the orientation");
            return copyOf(v);
        };
    };
    auto const both = expected(n, [&](std::size_t i) { return op(a[i], b[i]); });
    compare(both, apply(o.right()), "V op= V");
    compare(both, apply(o.viewB()), "V op= W");
    compare(expected(n, [&](std::size_t i) { return op(a[i], o.real); }), apply(o.real), "V op= real");
    compare(expected(n, [&](std::size_t i) { return op(a[i], static_cast<double>(o.integer)); }),
            apply(o.integer), "V op= integer");
    compare(
        expected(n, [&](std::size_t i) { return op(a[i], a[i]); }),
        [&] {
            Vector2 v = o.left();
            return copyOf(assign(v, v));
        },
        "V op= itself");
}

/// A view into the receiver's own storage, a few elements on: each element is read before it is written.
template<class Assign, class Op>
void overlappingAssignment(Operands const& o, std::size_t shift, Assign assign, Op op) {
    auto const& a = o.a;
    if (a.size() < shift)
        return;
    std::size_t const n = a.size() - shift;
    compare(
        expected(n, [&](std::size_t i) { return op(a[i], a[i + shift]); }),
        [&] {
            Vector2 v = o.left();
            require(v.resize(n).has_value(), "a resize that keeps the storage");
            assign(v, VectorView2(v.data() + shift, n, Column));
            return copyOf(v);
        },
        "V op= a view a few elements on");
}

void unaryMinus(Operands const& o) {
    auto const reference = negated(o.a);
    auto const signFlipped = [&](std::vector<double> const& values) {
        for (std::size_t i = 0; i < values.size(); ++i)
            require(TestKit::bitsOf(values[i]) == (TestKit::bitsOf(o.a[i]) ^ (std::uint64_t{1} << 63)),
                    "negation flips the sign bit and nothing else");
        return values;
    };
    compare(
        reference,
        [&] {
            Vector2 const v = o.left();
            return signFlipped(copyOf(-v));
        },
        "-V");
    compare(
        reference,
        [&] {
            Vector2 v = o.left();
            return signFlipped(copyOf(-std::move(v)));
        },
        "-V&&");
    compare(
        reference, [&] { return signFlipped(copyOf(-Vector(o.a))); }, "the negation of a legacy rvalue");
    compare(
        o.a,
        [&] {
            Vector const v(o.a);
            return copyOf(-v); // callers rely on this copy not being negated
        },
        "the negation of a legacy lvalue");
}

/// The vector-by-vector sum and difference of the legacy family, which are at global scope.
struct GlobalPlus {
    double operator()(double a, double b) const { return a + b; }
    template<class Left, class Right>
    requires(!std::is_arithmetic_v<std::remove_cvref_t<Left>>) Vector operator()(Left&& a, Right&& b) const {
        return ::operator+(std::forward<Left>(a), std::forward<Right>(b));
    }
};

struct GlobalMinus {
    double operator()(double a, double b) const { return a - b; }
    template<class Left, class Right>
    requires(!std::is_arithmetic_v<std::remove_cvref_t<Left>>) Vector operator()(Left&& a, Right&& b) const {
        return ::operator-(std::forward<Left>(a), std::forward<Right>(b));
    }
};

template<class Op>
void legacyOperators(Operands const& o, Op op) {
    auto const& a = o.a;
    auto const& b = o.b;
    std::size_t const n = a.size();
    auto const both = expected(n, [&](std::size_t i) { return op(a[i], b[i]); });
    compare(
        both,
        [&] {
            Vector const right(b);
            return copyOf(op(Vector(a), right));
        },
        "legacy V&& op V");
    compare(
        both, [&] { return copyOf(op(Vector(a), Vector(b))); }, "legacy V&& op V&&");
    compare(
        both,
        [&] {
            Vector const left(a);
            return copyOf(op(left, Vector(b)));
        },
        "legacy V op V&&");
}

template<class Op>
void legacyScalarOperators(Operands const& o, Op op) {
    auto const& a = o.a;
    std::size_t const n = a.size();
    auto const vectorFirst = expected(n, [&](std::size_t i) { return op(a[i], o.real); });
    auto const scalarFirst = expected(n, [&](std::size_t i) { return op(o.real, a[i]); });
    compare(
        vectorFirst,
        [&] {
            Vector const v(a);
            return copyOf(op(v, o.real));
        },
        "legacy V op s");
    compare(
        vectorFirst, [&] { return copyOf(op(Vector(a), o.real)); }, "legacy V&& op s");
    if constexpr (Computes<double, Op, Vector const&>) {
        compare(
            scalarFirst,
            [&] {
                Vector const v(a);
                return copyOf(op(o.real, v));
            },
            "legacy s op V");
        compare(
            scalarFirst, [&] { return copyOf(op(o.real, Vector(a))); }, "legacy s op V&&");
    }
}

template<class Assign, class Op>
void legacyAssignment(Operands const& o, Assign assign, Op op) {
    auto const both = expected(o.a.size(), [&](std::size_t i) { return op(o.a[i], o.b[i]); });
    compare(
        both,
        [&] {
            Vector v(o.a);
            return copyOf(assign(v, Vector(o.b)));
        },
        "legacy V op= V");
    if (!o.a.empty())
        compare(
            both,
            [&] {
                Vector v(o.a);
                return copyOf(assign(v, ViewVector(o.b.data(), o.b.size(), o.orientationB)));
            },
            "legacy V op= view");
}

/// d / (a, b) step by step.
std::complex<double> quotient(double d, double a, double b) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    if (std::isnan(a) || std::isnan(b))
        return {nan, nan};
    if (std::abs(a) > std::abs(b)) {
        double const r = b / a;
        double const denominator = r * b + a;
        if (std::isnan(denominator) || denominator == 0.0)
            return {nan, nan};
        return {(d + 0.0 * r) / denominator, (0.0 - d * r) / denominator};
    }
    if (b == 0.0)
        return {d / a, 0.0 / a};
    double const r = a / b;
    double const denominator = r * a + b;
    if (std::isnan(denominator) || denominator == 0.0)
        return {nan, nan};
    return {(d * r + 0.0) / denominator, (0.0 * r - d) / denominator};
}

void complexOperators(Operands const& o) {
    std::size_t const n = o.a.size();
    std::vector<double> parts(2 * n);
    std::vector<std::complex<double>> elements(n);
    for (std::size_t i = 0; i < n; ++i) {
        parts[2 * i] = o.a[i];
        parts[2 * i + 1] = o.b[n - 1 - i];
        elements[i] = {parts[2 * i], parts[2 * i + 1]};
    }
    double const d = o.real;
    auto const z = [&] {
        return ComplexVector2::fromData(parts.data(), parts.size()).value();
    };
    auto const old = [&] {
        return ComplexVector(elements);
    };
    Vector2 const v = o.right();
    Vector const oldV(o.b);

    auto const scaled = expected(2 * n, [&](std::size_t i) { return parts[i] * d; });
    auto const divided = expected(2 * n, [&](std::size_t i) { return parts[i] / d; });
    auto const weighted = expected(2 * n, [&](std::size_t i) { return parts[i] * o.b[i / 2]; });
    auto const inverse = expected(2 * n, [&](std::size_t i) {
        std::complex<double> const q = quotient(d, parts[i / 2 * 2], parts[i / 2 * 2 + 1]);
        return i % 2 == 0 ? q.real() : q.imag();
    });
    ComplexVector2 named = z();
    ComplexVector const oldNamed = old();
    compare(
        scaled, [&] { return copyOfParts(z() * d); }, "z * d");
    compare(
        scaled, [&] { return copyOfParts(d * named); }, "d * z");
    compare(
        divided, [&] { return copyOfParts(z() / d); }, "z / d");
    compare(
        inverse, [&] { return copyOfParts(d / z()); }, "d / z");
    compare(
        inverse, [&] { return copyOfParts(d / named); }, "d / named z");
    compare(
        weighted, [&] { return copyOfParts(z() * v); }, "z * v");
    compare(
        weighted, [&] { return copyOfParts(v * named); }, "v * z");
    compare(
        weighted, [&] { return copyOfParts(named.view() * v); }, "w * v");
    compare(
        scaled, [&] { return copyOfParts(::operator*(old(), d)); }, "legacy z * d");
    compare(
        scaled, [&] { return copyOfParts(::operator*(d, oldNamed)); }, "legacy d * z");
    compare(
        divided, [&] { return copyOfParts(::operator/(oldNamed, d)); }, "legacy z / d");
    compare(
        weighted, [&] { return copyOfParts(oldV * old()); }, "legacy v * z");
    compare(
        weighted, [&] { return copyOfParts(oldNamed * oldV); }, "legacy z * v");
}

} // namespace

void fuzzArithmetic(Input& input) {
    std::size_t const kind = input.below(11);
    Operands const o = operandsOf(input);
    nextForm = input.byte();
    auto const plusAssign = [](auto& v, auto const& x) -> auto& {
        return v += x;
    };
    auto const minusAssign = [](auto& v, auto const& x) -> auto& {
        return v -= x;
    };
    auto const timesAssign = [](auto& v, auto const& x) -> auto& {
        return v *= x;
    };
    auto const overAssign = [](auto& v, auto const& x) -> auto& {
        return v /= x;
    };
    switch (kind) {
    case 0:
        currentOperators(o, std::plus<>());
        break;
    case 1:
        currentOperators(o, std::minus<>());
        break;
    case 2:
        currentOperators(o, std::multiplies<>());
        break;
    case 3:
        currentOperators(o, std::divides<>());
        break;
    case 4:
        compoundAssignment(o, plusAssign, std::plus<>());
        compoundAssignment(o, minusAssign, std::minus<>());
        break;
    case 5:
        compoundAssignment(o, timesAssign, std::multiplies<>());
        compoundAssignment(o, overAssign, std::divides<>());
        break;
    case 6: {
        std::size_t const shift = 1 + input.below(70);
        overlappingAssignment(o, shift, plusAssign, std::plus<>());
        overlappingAssignment(o, shift, overAssign, std::divides<>());
        break;
    }
    case 7:
        unaryMinus(o);
        break;
    case 8:
        legacyOperators(o, GlobalPlus());
        legacyOperators(o, GlobalMinus());
        legacyOperators(o, std::multiplies<>());
        break;
    case 9:
        legacyScalarOperators(o, std::plus<>());
        legacyScalarOperators(o, std::minus<>());
        legacyScalarOperators(o, std::multiplies<>());
        legacyScalarOperators(o, std::divides<>());
        legacyAssignment(o, plusAssign, std::plus<>());
        legacyAssignment(o, minusAssign, std::minus<>());
        break;
    default:
        complexOperators(o);
    }
}

} // namespace Tervane::Math::Fuzz
