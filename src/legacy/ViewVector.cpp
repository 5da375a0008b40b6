#include "foundation/Shapes.h"
#include "legacy/Access.h"

#include <Math/Matrix.h>
#include <Math/Vector.h>
#include <Math/ViewVector.h>

#include <cstdint>
#include <typeinfo>
#include <utility>

namespace Tervane::Math {

namespace {

using Detail::LegacyAccess;
using Detail::ViewVectorData;

using DataPointer = System::UniquePointer<System::ObjectData>;

// Through the virtual access, which a caller's own kind of matrix may have overridden. One of ours without
// rows may have no storage in which a reference to an element could lie.
double const* columnAddress(Matrix const& m, std::size_t column) {
    bool const mayHaveNoStorage = typeid(m) == typeid(Matrix) && m.rows() == 0;
    return mayHaveNoStorage ? m.data() : &m[Index(0, column)];
}

} // namespace

ViewVector::ViewVector() : BasicObject(DataPointer(new ViewVectorData)) {}

ViewVector::ViewVector(double const* p, std::size_t n, VectorOrientation orientation)
    : BasicObject(DataPointer(new ViewVectorData(p, n, orientation))) {}

ViewVector::ViewVector(Vector const& v) : ViewVector(v.data(), v.length(), v.orientation()) {}

ViewVector::ViewVector(Matrix const& m, std::size_t column)
    : ViewVector(columnAddress(m, column), m.rows(), Column) {}

ViewVector::ViewVector(ViewVector const& other)
    : BasicObject(DataPointer(new ViewVectorData(LegacyAccess::data(other)))) {}

ViewVector::ViewVector(ViewVector&& other) noexcept = default;

ViewVector& ViewVector::operator=(ViewVector const& other) {
    if (this == &other)
        return *this; // moved-from or not
    if (!LegacyAccess::hasData(*this))
        return *this = ViewVector(other);
    LegacyAccess::data(*this) = LegacyAccess::data(other);
    return *this;
}

ViewVector& ViewVector::operator=(ViewVector&& other) noexcept = default;

ViewVector::~ViewVector() = default;

ViewVector ViewVector::sliced(std::size_t start, std::size_t n) const {
    ViewVectorData const& seen = LegacyAccess::data(*this);
    return ViewVector(seen.data + start, n, seen.orientation);
}

double const& ViewVector::operator[](Index const& i) const {
    ViewVectorData const& seen = LegacyAccess::data(*this);
    return seen.data[seen.orientation == Column ? i.row() : i.column()];
}

double const& ViewVector::operator[](std::size_t i) const {
    return LegacyAccess::data(*this).data[i];
}

double const* ViewVector::data() const {
    return LegacyAccess::data(*this).data;
}

double const* ViewVector::begin() const {
    return data();
}

// An empty view has length 1, so its end is one element past its data (compatibility C64), null included. As
// an integer, because adding to a pointer outside of an array is undefined.
double const* ViewVector::end() const {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): see above
    return reinterpret_cast<double const*>(reinterpret_cast<std::uintptr_t>(data())
                                           + length() * sizeof(double));
}

std::size_t ViewVector::columns() const {
    ViewVectorData const& seen = LegacyAccess::data(*this);
    return Detail::columnsOf(seen.orientation, seen.length);
}

std::size_t ViewVector::rows() const {
    ViewVectorData const& seen = LegacyAccess::data(*this);
    return Detail::rowsOf(seen.orientation, seen.length);
}

VectorOrientation ViewVector::orientation() const {
    return LegacyAccess::data(*this).orientation;
}

} // namespace Tervane::Math
