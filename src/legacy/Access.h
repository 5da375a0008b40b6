#pragma once

#include "foundation/Transform.h"
#include "legacy/ContainerData.h"

#include <Math/ComplexVector.h>
#include <Math/Matrix.h>
#include <Math/Vector.h>
#include <Math/ViewVector.h>

#include <complex>
#include <cstddef>

namespace Tervane::Math::Detail {

/// The library's own way into the legacy containers: to their data objects, and to containers whose elements
/// are about to be written. Kernels take their storage from here rather than through the exported members.
///
/// @pre No container given is moved-from.
struct LegacyAccess {
    /// @name The data object
    /// @{
    static VectorData& data(Vector& v) { return of<VectorData>(v); }
    static VectorData const& data(Vector const& v) { return of<VectorData>(v); }
    static ViewVectorData& data(ViewVector& v) { return of<ViewVectorData>(v); }
    static ViewVectorData const& data(ViewVector const& v) { return of<ViewVectorData>(v); }
    static MatrixData& data(Matrix& m) { return of<MatrixData>(m); }
    static MatrixData const& data(Matrix const& m) { return of<MatrixData>(m); }
    static ComplexVectorData& data(ComplexVector& z) {
        return *static_cast<ComplexVectorData*>(z.objectData());
    }
    static ComplexVectorData const& data(ComplexVector const& z) {
        return *static_cast<ComplexVectorData const*>(z.objectData());
    }
    /// @}

    /// @name The elements
    /// @{
    static RealArray& elements(Vector& v) { return data(v).values; }
    static RealArray const& elements(Vector const& v) { return data(v).values; }
    static RealArray& elements(Matrix& m) { return data(m).values; }
    static RealArray const& elements(Matrix const& m) { return data(m).values; }
    static ComplexArray& elements(ComplexVector& z) { return data(z).values; }
    static ComplexArray const& elements(ComplexVector const& z) { return data(z).values; }
    /// @}

    /// @name Containers whose elements the caller writes
    /// @{
    static Vector uninitialisedVector(std::size_t n, VectorOrientation orientation = Column) {
        Vector v;
        VectorData& d = data(v);
        d.values = RealArray(Uninitialised{}, n);
        d.orientation = orientation;
        return v;
    }

    static ComplexVector uninitialisedComplexVector(std::size_t n) {
        ComplexVector z;
        data(z).values = ComplexArray(Uninitialised{}, n);
        return z;
    }
    /// @}

    /// Whether a container has a data object; a moved-from one has none. This alone may be asked of any.
    template<class T>
    static bool hasData(System::BasicObject<T> const& object) noexcept {
        return object._data() != nullptr;
    }
    static bool hasData(ComplexVector const& z) noexcept { return z.objectData() != nullptr; }

private:
    template<class Data, class T>
    static Data& of(System::BasicObject<T>& object) {
        return *static_cast<Data*>(object._data());
    }

    template<class Data, class T>
    static Data const& of(System::BasicObject<T> const& object) {
        return *static_cast<Data const*>(object._data());
    }
};

template<>
struct AccessTo<Vector> {
    static double* elements(Vector& v) { return LegacyAccess::elements(v).data(); }
    static double const* elements(Vector const& v) { return LegacyAccess::elements(v).data(); }
    static std::size_t length(Vector const& v) { return LegacyAccess::elements(v).length(); }
    static Vector shapedAs(Vector const& v) {
        return LegacyAccess::uninitialisedVector(length(v), LegacyAccess::data(v).orientation);
    }
};

template<>
struct AccessTo<ComplexVector> {
    static std::complex<double>* elements(ComplexVector& z) { return LegacyAccess::elements(z).data(); }
    static std::complex<double> const* elements(ComplexVector const& z) {
        return LegacyAccess::elements(z).data();
    }
    static std::size_t length(ComplexVector const& z) { return LegacyAccess::elements(z).length(); }
    static ComplexVector shapedAs(ComplexVector const& z) {
        return LegacyAccess::uninitialisedComplexVector(length(z));
    }
};

/// As a second operand: its elements are where the table says.
template<>
struct AccessTo<AbstractVector> {
    static double const* elements(AbstractVector const& v) { return v.data(); }
};

} // namespace Tervane::Math::Detail
