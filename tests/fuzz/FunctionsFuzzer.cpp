// Element-wise functions, reductions, generators, sorting and interpolation of both generations, each against
// the scalar function or a loop of its own.

#include "fuzz/Fuzz.h"

#include <Math/ComplexVector.h>
#include <Math/ComplexVector2.h>
#include <Math/Elementwise.h>
#include <Math/FloorDivision.h>
#include <Math/Generators.h>
#include <Math/Interpolation.h>
#include <Math/Reductions.h>
#include <Math/Sorting.h>
#include <Math/Vector.h>
#include <Math/Vector2.h>
#include <Math/VectorView2.h>
#include <Math/ViewVector.h>

#include <algorithm>
#include <complex>
#include <utility>

namespace Tervane::Math::Fuzz {

namespace {

Vector2 currentOf(std::vector<double> const& values) {
    return Vector2(values.data(), values.size());
}

/// A function of both generations, of named vectors and of temporaries, against the scalar one.
template<class Function, class Scalar>
void elementwise(std::vector<double> const& x, Function const& function, Scalar const& scalar,
                 char const* what) {
    std::vector<double> reference(x.size());
    std::transform(x.begin(), x.end(), reference.begin(), scalar);
    Vector2 const named = currentOf(x);
    Vector const oldNamed(x);
    requireSameValues(underEveryPolicy([&] { return copyOf(function(named)); }, what), reference, what);
    requireSameValues(underEveryPolicy([&] { return copyOf(function(currentOf(x))); }, what), reference,
                      what);
    requireSameValues(underEveryPolicy([&] { return copyOf(function(oldNamed)); }, what), reference, what);
    requireSameValues(underEveryPolicy([&] { return copyOf(function(Vector(x))); }, what), reference, what);
    require(TestKit::sameBits(TestKit::elementsOf(named), x), "a named argument stays as it is");
}

void elementwiseFunctions(Input& input) {
    std::size_t const which = input.below(8);
    std::vector<double> const x = input.values(input.length());
    switch (which) {
    case 0:
        elementwise(
            x, [](auto&& v) { return abs(std::forward<decltype(v)>(v)); },
            [](double e) { return std::fabs(e); }, "abs");
        break;
    case 1:
        elementwise(
            x, [](auto&& v) { return sin(std::forward<decltype(v)>(v)); },
            [](double e) { return std::sin(e); }, "sin");
        break;
    case 2:
        elementwise(
            x, [](auto&& v) { return cos(std::forward<decltype(v)>(v)); },
            [](double e) { return std::cos(e); }, "cos");
        break;
    case 3:
        elementwise(
            x, [](auto&& v) { return exp(std::forward<decltype(v)>(v)); },
            [](double e) { return std::exp(e); }, "exp");
        break;
    case 4:
        elementwise(
            x, [](auto&& v) { return log10(std::forward<decltype(v)>(v)); },
            [](double e) { return std::log10(e); }, "log10");
        break;
    case 5:
        elementwise(
            x, [](auto&& v) { return sqrt(std::forward<decltype(v)>(v)); },
            [](double e) { return std::sqrt(e); }, "sqrt");
        break;
    case 6: {
        int const n = input.flag() ? input.number<std::int8_t>() : input.number<int>();
        double const volatile exponent =
            n; // the general function, whatever the compiler knows of the exponent
        elementwise(
            x, [n](auto&& v) { return pow(std::forward<decltype(v)>(v), n); },
            [&](double e) { return std::pow(e, exponent); }, "pow");
        break;
    }
    default: {
        std::vector<double> const y = input.values(x.size());
        std::vector<std::complex<double>> z(x.size());
        std::vector<double> parts;
        std::vector<double> reference(x.size());
        for (std::size_t i = 0; i < x.size(); ++i) {
            z[i] = {x[i], y[i]};
            parts.insert(parts.end(), {x[i], y[i]});
            reference[i] = std::hypot(x[i], y[i]);
        }
        ComplexVector2 const current = ComplexVector2::fromData(parts.data(), parts.size()).value();
        ComplexVector const old(z);
        requireSameValues(underEveryPolicy([&] { return copyOf(abs(current)); }, "magnitudes"), reference,
                          "magnitudes");
        requireSameValues(underEveryPolicy([&] { return copyOf(abs(old)); }, "magnitudes"), reference,
                          "magnitudes");
    }
    }
}

double sumInFourLanes(std::vector<double> const& x) {
    double lanes[4] = {};
    std::size_t const whole = x.size() / 4 * 4;
    for (std::size_t i = 0; i < whole; ++i)
        lanes[i % 4] += x[i];
    double total = whole == 0 ? 0.0 : 0.0 + ((lanes[0] + lanes[2]) + (lanes[1] + lanes[3]));
    for (std::size_t i = whole; i < x.size(); ++i)
        total += x[i];
    return total;
}

void reductions(Input& input) {
    std::size_t const n = input.length();
    bool const isOrdinary = n > 12 && input.flag();
    std::vector<double> const x = isOrdinary ? TestKit::ordinaryValues(n, input.byte()) : input.values(n);
    Vector2 const current = currentOf(x);
    Vector const old(x);
    double const reference = sumInFourLanes(x);
    for (AlgorithmExecutionPolicy const policy : TestKit::allPolicies) {
        TestKit::PolicyScope const scope(policy);
        double const total = sum(current);
        bool const isParallel = policy == Parallel || policy == ParallelUnsequenced;
        requireSameValues({{sum(old)}}, {{total}}, "the sums of both generations");
        if (!isParallel)
            requireSameValues({{total}}, {{reference}}, "the sum in its order");
        else if (isOrdinary)
            // Each of the n additions, in either order, is within a rounding of at most 8 n.
            require(std::abs(total - reference)
                        <= 2.0 * static_cast<double>(n) * 0x1p-53 * 8.0 * static_cast<double>(n),
                    "the parallel sum is within its bound");
    }
    double running = 0.0;
    for (double const e : x)
        running += e;
    double const average = running / static_cast<double>(n);
    requireSameValues({{mean(current), mean(old)}}, {{average, average}}, "mean");
    require(len(current) == n && len(old) == n && len(VectorView2(x.data(), n, Column)) == n, "len");
    if (n != 0) {
        double const largest = *std::max_element(x.begin(), x.end());
        requireSameValues({{max(current), max(old)}}, {{largest, largest}}, "max");
    }
    double const threshold = input.value();
    Vector comparable(x);
    std::vector<bool> const below = comparable < threshold;
    std::vector<bool> const above = comparable > threshold;
    require(below.size() == n && above.size() == n, "a flag an element");
    for (std::size_t i = 0; i < n; ++i)
        require(below[i] == (x[i] < threshold) && above[i] == (x[i] > threshold),
                "comparisons with a threshold");
}

void generators(Input& input) {
    int const start = input.flag() ? input.number<std::int8_t>() : input.number<int>();
    int const count = static_cast<int>(input.below(2000)) - 100;
    int const stop = static_cast<int>(static_cast<unsigned>(start) + static_cast<unsigned>(count)); // wraps
    std::vector<double> integers;
    for (int i = 0; i < count; ++i)
        integers.push_back(
            static_cast<double>(static_cast<int>(static_cast<unsigned>(start) + static_cast<unsigned>(i))));
    requireSameValues(copyOf(arange(start, stop)), integers, "arange");
    requireSameValues(copyOf(Vector::arange(start, stop)), integers, "legacy arange");

    double const a = input.value();
    double const b = input.value();
    std::size_t const n = 1 + input.below(600);
    std::vector<double> points(n);
    points[0] = a;
    points[n - 1] = b;
    double const step = (b - a) / static_cast<double>(std::max<std::size_t>(n - 1, 1));
    for (std::size_t i = 1; i + 1 < n; ++i)
        points[i] = points[i - 1] + step;
    requireSameValues(copyOf(linspace(a, b, n)), points, "linspace");
    requireSameValues(copyOf(Vector::linspace(a, b, n)), points, "legacy linspace");
    requireSameValues(copyOf(zeros(n)), std::vector<double>(n), "zeros");
    requireSameValues(copyOf(zeros_old(n)), std::vector<double>(n), "legacy zeros");

    requireSameValues({{floordiv(a, b)}}, {{std::floor(a / b)}}, "floordiv");
    auto const whole = input.number<std::size_t>();
    requireSameValues({{floordiv(whole, b)}}, {{std::floor(static_cast<double>(whole) / b)}},
                      "floordiv of a count");
}

std::vector<double> withoutNaNs(std::vector<double> values) {
    std::erase_if(values, [](double x) { return std::isnan(x); });
    return values;
}

std::vector<std::uint64_t> sortedBits(std::span<double const> values) {
    std::vector<std::uint64_t> bits;
    for (double const x : values)
        bits.push_back(TestKit::bitsOf(x));
    std::sort(bits.begin(), bits.end());
    return bits;
}

void sorting(Input& input) {
    std::vector<double> const x = withoutNaNs(input.values(input.length()));
    auto const check = [&](auto const& sorted) {
        require(std::is_sorted(sorted.data(), sorted.data() + sorted.length()),
                "a sorted vector is in order");
        require(sortedBits(TestKit::elementsOf(sorted)) == sortedBits(x),
                "a sorted vector has the same elements");
    };
    Vector2 const named = currentOf(x);
    check(sort(named));
    require(TestKit::sameBits(TestKit::elementsOf(named), x), "sort leaves its argument alone");
    check(sort(currentOf(x)));
    Vector old(x);
    require(&old.sort() == &old, "sort gives the vector");
    check(old);
}

void interpolation(Input& input) {
    std::vector<double> breakpoints = withoutNaNs(input.values(input.below(40)));
    std::sort(breakpoints.begin(), breakpoints.end());
    std::size_t const m = breakpoints.size();
    std::vector<double> const values = input.values(std::max<std::size_t>(m, 1) + input.below(3));
    std::vector<double> x = input.values(input.length());
    for (std::size_t i = 0; i < x.size() && m != 0; i += 3)
        x[i] = breakpoints[i % m];
    auto const reference = [&](bool isLegacy) {
        std::vector<double> result(x.size());
        for (std::size_t i = 0; i < x.size(); ++i) {
            std::size_t k = 0;
            while (k < m && breakpoints[k] < x[i])
                ++k;
            if (k == m)
                result[i] = values.back();
            else if (k == 0)
                result[i] = isLegacy ? breakpoints[0] : values[0];
            else
                result[i] = std::lerp(values[k - 1], values[k],
                                      (x[i] - breakpoints[k - 1]) / (breakpoints[k] - breakpoints[k - 1]));
        }
        return result;
    };
    Vector2 const xp = currentOf(breakpoints);
    Vector2 const fp = currentOf(values);
    Vector2 const named = currentOf(x);
    auto const expected = reference(false);
    requireSameValues(underEveryPolicy([&] { return copyOf(interp(named, xp, fp)); }, "interp"), expected,
                      "interp");
    requireSameValues(
        underEveryPolicy(
            [&] { return copyOf(interp(currentOf(x), xp, VectorView2(fp.data(), fp.length(), Row))); },
            "interp in place"),
        expected, "interp in place");
    if (!x.empty())
        requireSameValues({{interp(x[0], xp, fp)}}, {{expected[0]}}, "interp of a number");
    if (m != 0) { // a legacy view of no values gives its length as 1
        Vector const oldXp(breakpoints);
        Vector const oldFp(values);
        Vector const oldNamed(x);
        auto const oldExpected = reference(true);
        requireSameValues(
            underEveryPolicy([&] { return copyOf(interp(oldNamed, oldXp, oldFp)); }, "legacy interp"),
            oldExpected, "legacy interp");
        requireSameValues(
            underEveryPolicy([&] { return copyOf(interp(Vector(x), oldXp, ViewVector(oldFp))); },
                             "legacy interp in place"),
            oldExpected, "legacy interp in place");
    }
}

} // namespace

void fuzzFunctions(Input& input) {
    switch (input.below(8)) {
    case 0:
        reductions(input);
        break;
    case 1:
        generators(input);
        break;
    case 2:
        sorting(input);
        break;
    case 3:
        interpolation(input);
        break;
    default:
        elementwiseFunctions(input);
    }
}

} // namespace Tervane::Math::Fuzz
