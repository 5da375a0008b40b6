#pragma once

/// @file
/// The two generations of vectors behind one name each, so that a test of what both do alike is written once.

#include "legacy/Access.h"

#include <Math/ComplexVector.h>
#include <Math/ComplexVector2.h>
#include <Math/Generators.h>
#include <Math/Vector.h>
#include <Math/Vector2.h>
#include <Math/ViewVector.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <cstddef>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace Tervane::Math::TestKit {

struct CurrentGeneration {
    using Real = Vector2;
    using Complex = ComplexVector2;

    static Real column(std::span<double const> values) { return Vector2(values.data(), values.size()); }
    static Real row(std::span<double const> values) {
        return Vector2(VectorView2(values.data(), values.size(), Row));
    }
    static VectorOrientation orientationOf(Real& v) { return v.orientation(); }
    static Complex complex(std::span<double const> parts) {
        Complex z(parts.size() / 2);
        std::copy(parts.begin(), parts.end(), z.data());
        return z;
    }
    /// Whether a vector is as a move leaves it.
    static bool isMovedFrom(Real const& v) { return v.length() == 0 && v.data() == nullptr; }

    static Real arange(int start, int stop) { return Math::arange(start, stop); }
    static Real arange(int stop) { return Math::arange(stop); }
    static Real linspace(double start, double stop, std::size_t n) { return Math::linspace(start, stop, n); }
};

struct LegacyGeneration {
    using Real = Vector;
    using Complex = ComplexVector;

    static Real column(std::span<double const> values) { return Vector(values.data(), values.size()); }
    static Real row(std::span<double const> values) {
        // A row of at least two, because the constructor takes shorter shapes for columns.
        Vector v(Dimensions(1, std::max<std::size_t>(values.size(), 2)), 0.0);
        v.resize(values.size());
        std::copy(values.begin(), values.end(), v.begin());
        return v;
    }
    static VectorOrientation orientationOf(Real& v) { return v.orientation(); }
    static Complex complex(std::span<double const> parts) {
        Complex z;
        z.setData(parts.data(), parts.size() / 2);
        return z;
    }
    static bool isMovedFrom(Real const& v) { return !Detail::LegacyAccess::hasData(v); }

    static Real arange(int start, int stop) { return Vector::arange(start, stop); }
    static Real arange(int stop) { return Vector::arange(stop); }
    static Real linspace(double start, double stop, std::size_t n) {
        return Vector::linspace(start, stop, n);
    }
};

using Generations = testing::Types<CurrentGeneration, LegacyGeneration>;

struct GenerationName {
    template<class Generation>
    static std::string GetName(int /*index*/) {
        return std::is_same_v<Generation, CurrentGeneration> ? "Current" : "Legacy";
    }
};

} // namespace Tervane::Math::TestKit
