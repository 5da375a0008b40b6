#include "containers/Access.h"
#include "foundation/ElementwiseDispatch.h"
#include "foundation/Multiversion.h"
#include "legacy/Access.h"

#include <Math/Interpolation.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <typeinfo>
#include <utility>

namespace Tervane::Math {

namespace {

using Detail::ElementCost;
using Detail::transformed;

/// How many queries walk down the table side by side. One alone waits for a load at every step; the others
/// fill that time.
constexpr std::size_t queriesAtOnce = 16;

// For each query the first index whose breakpoint is not below it, m if there is none. All of them halve the
// same number of candidates at every step, so there is nothing for the processor to mispredict, and where it
// can gather the queries are lanes of a vector.
TVNMATH_MULTIVERSION void lowerBounds(double const* breakpoints, std::size_t m, double const* queries,
                                      std::size_t* found) noexcept {
    std::size_t base[queriesAtOnce] = {};
    for (std::size_t candidates = m; candidates > 1;) {
        std::size_t const half = candidates / 2;
        for (std::size_t q = 0; q < queriesAtOnce; ++q)
            base[q] += breakpoints[base[q] + half - 1] < queries[q] ? half : 0;
        candidates -= half;
    }
    for (std::size_t q = 0; q < queriesAtOnce; ++q)
        found[q] = base[q] + (m != 0 && breakpoints[base[q]] < queries[q] ? 1 : 0);
}

/// A table of plain memory.
struct Table {
    double const* breakpoints;
    std::size_t length;
    double const* values;
    std::size_t valuesLength;
    /// What holds up to the first breakpoint: the first value, and in the legacy generation the first
    /// breakpoint itself (compatibility C41).
    double const* first;

    double value(std::size_t k) const { return values[k]; }
    double upToFirst() const { return *first; }
    double aboveLast() const { return values[valuesLength - 1]; }
};

/// A legacy table whose values come from a caller's own kind of view.
struct CallersTable {
    double const* breakpoints;
    std::size_t length;
    ViewVector const& values;

    double value(std::size_t k) const { return values[k]; }
    double upToFirst() const { return breakpoints[0]; }
    double aboveLast() const { return values[values.length() - 1]; }
};

template<class Table>
struct InterpolatedIn {
    static constexpr ElementCost cost = ElementCost::Function;

    Table table;

    double operator()(double x) const {
        double const* const first = table.breakpoints;
        return at(x, static_cast<std::size_t>(std::lower_bound(first, first + table.length, x) - first));
    }

    void operator()(double const* in, double* out, std::size_t n) const {
        std::size_t found[queriesAtOnce];
        std::size_t i = 0;
        for (; i + queriesAtOnce <= n; i += queriesAtOnce) {
            lowerBounds(table.breakpoints, table.length, in + i, found);
            for (std::size_t q = 0; q < queriesAtOnce; ++q)
                out[i + q] = at(in[i + q], found[q]);
        }
        Detail::Kernels::inOrder(in + i, out + i, n - i, *this);
    }

private:
    /// @param k the first index whose breakpoint is not below `x`
    double at(double x, std::size_t k) const {
        if (k == table.length)
            return table.aboveLast();
        if (k == 0)
            return table.upToFirst();
        double const below = table.breakpoints[k - 1];
        double const t = (x - below) / (table.breakpoints[k] - below);
        return std::lerp(table.value(k - 1), table.value(k), t);
    }
};

Table tableOf(Vector2 const& xp, VectorView2 const& fp) {
    return {xp.data(), xp.length(), fp.data(), fp.length(), fp.data()};
}

Table tableOf(Vector const& xp, ViewVector const& fp) {
    Detail::RealArray const& breakpoints = Detail::LegacyAccess::elements(xp);
    return {breakpoints.data(), breakpoints.length(), fp.data(), fp.length(), breakpoints.data()};
}

VectorView2 viewOf(Vector2 const& v) {
    return VectorView2(v.data(), v.length(), Detail::ContainerAccess::orientation(v));
}

/// By the numbers, because an empty view may count an element at no address.
bool overlap(double const* a, std::size_t n, double const* b, std::size_t m) {
    auto const beginA = reinterpret_cast<std::uintptr_t>(a);
    auto const beginB = reinterpret_cast<std::uintptr_t>(b);
    return beginA < beginB + m * sizeof(double) && beginB < beginA + n * sizeof(double);
}

/// Interpolates at every element of `x` in its own storage, which the result takes over. Where the table lies
/// in that storage, what a point gives depends on the points before it; then all go in order, on this thread.
template<class Points>
Points interpolated(Points& x, Table const& table) {
    using Access = Detail::AccessTo<Points>;
    double* const points = Access::elements(x);
    std::size_t const n = Access::length(x);
    InterpolatedIn<Table> const op{table};
    if (!overlap(points, n, table.breakpoints, table.length)
        && !overlap(points, n, table.values, table.valuesLength))
        return transformed(std::move(x), op);
    Detail::Kernels::inOrder(points, points, n, op);
    return std::move(x);
}

/// Whether a view is one of ours, whose elements are where data() says. A caller's own kind may do what it
/// likes in its element access, throw among others, so it is asked in order and on the caller's thread.
bool isPlain(ViewVector const& view) {
    return typeid(view) == typeid(ViewVector);
}

/// Interpolates between the values of a caller's own kind of view.
void interpolate(Vector const& x, Vector const& xp, ViewVector const& fp, Vector& result) {
    Detail::RealArray const& points = Detail::LegacyAccess::elements(x);
    Detail::RealArray const& breakpoints = Detail::LegacyAccess::elements(xp);
    InterpolatedIn<CallersTable> const op{{breakpoints.data(), breakpoints.length(), fp}};
    Detail::Kernels::inOrder(points.data(), Detail::LegacyAccess::elements(result).data(), points.length(),
                             op);
}

} // namespace

Vector2 interp(Vector2&& x, Vector2 const& xp, VectorView2 const& fp) {
    return interpolated(x, tableOf(xp, fp));
}

Vector2 interp(Vector2&& x, Vector2 const& xp, Vector2 const& fp) {
    return interp(std::move(x), xp, viewOf(fp));
}

Vector2 interp(Vector2 const& x, Vector2 const& xp, VectorView2 const& fp) {
    return transformed(x, InterpolatedIn<Table>{tableOf(xp, fp)});
}

Vector2 interp(Vector2 const& x, Vector2 const& xp, Vector2 const& fp) {
    return interp(x, xp, viewOf(fp));
}

double interp(double const& x, Vector2 const& xp, Vector2 const& fp) {
    return InterpolatedIn<Table>{tableOf(xp, viewOf(fp))}(x);
}

Vector interp(Vector&& x, Vector const& xp, ViewVector const& fp) {
    if (isPlain(fp))
        return interpolated(x, tableOf(xp, fp));
    interpolate(x, xp, fp, x);
    return std::move(x);
}

Vector interp(Vector const& x, Vector const& xp, ViewVector const& fp) {
    if (isPlain(fp))
        return transformed(x, InterpolatedIn<Table>{tableOf(xp, fp)});
    Vector result = Detail::AccessTo<Vector>::shapedAs(x);
    interpolate(x, xp, fp, result);
    return result;
}

Vector interp(Vector const& x, Vector const& xp, Vector const& fp) {
    return interp(x, xp, ViewVector(fp));
}

} // namespace Tervane::Math
