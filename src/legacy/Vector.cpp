#include "foundation/Shapes.h"
#include "foundation/SliceResolution.h"
#include "functions/Generators.h"
#include "functions/Sorting.h"
#include "legacy/Access.h"

#include <Math/Vector.h>

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

namespace Tervane::Math {

namespace {

using Detail::LegacyAccess;
using Detail::RealArray;
using Detail::VectorData;

using DataPointer = System::UniquePointer<System::ObjectData>;

// Callers make the elements first and the data object last, so a length that is refused is refused before
// anything is allocated.
DataPointer dataOf(RealArray&& elements, VectorOrientation orientation) {
    return DataPointer(new VectorData(std::move(elements), orientation));
}

DataPointer columnOf(RealArray&& elements) {
    return dataOf(std::move(elements), Column);
}

DataPointer copyOf(AbstractVector const& v) {
    VectorOrientation const orientation = v.orientation();
    RealArray elements(v.length());
    for (std::size_t i = 0; i < v.length(); ++i) {
        if (i == elements.length())
            elements.resize(i + 1); // a table that grows while it is read
        elements[i] = v.value(i);
    }
    return dataOf(std::move(elements), orientation);
}

RealArray concatenated(Vector const* vectors, std::size_t n) {
    std::size_t total = 0;
    for (Vector const* v = vectors; v != vectors + n; ++v)
        total += LegacyAccess::elements(*v).length();
    RealArray elements(Detail::Uninitialised{}, total);
    double* out = elements.begin();
    for (Vector const* v = vectors; v != vectors + n; ++v)
        out = std::copy(LegacyAccess::elements(*v).begin(), LegacyAccess::elements(*v).end(), out);
    return elements;
}

template<class Comparison>
std::vector<bool> compared(RealArray const& elements, double t, Comparison holds) {
    std::vector<bool> result(elements.length());
    auto flag = result.begin();
    for (double const x : elements)
        *flag++ = holds(x, t);
    return result;
}

} // namespace

Vector::Vector() : BasicObject(DataPointer(new VectorData)) {}

Vector::Vector(std::size_t n) : Vector(n, 0.0) {}

Vector::Vector(std::size_t n, double const& fill) : BasicObject(columnOf(RealArray(n, fill))) {}

Vector::Vector(double const* p, std::size_t n) : BasicObject(columnOf(RealArray(p, n))) {}

Vector::Vector(std::vector<double> const& values) : Vector(values.data(), values.size()) {}

Vector::Vector(std::initializer_list<double> values) : Vector(values.begin(), values.size()) {}

Vector::Vector(Vector const* vectors, std::size_t n) : BasicObject(columnOf(concatenated(vectors, n))) {}

Vector::Vector(std::initializer_list<Vector> vectors) : Vector(vectors.begin(), vectors.size()) {}

Vector::Vector(AbstractVector const& v) : BasicObject(copyOf(v)) {}

// The fill is ignored (compatibility C65).
Vector::Vector(Dimensions const& dimensions, double const& /*fill*/)
    : Vector(std::max(dimensions.rows(), dimensions.columns())) {
    LegacyAccess::data(*this).orientation = dimensions.columns() <= 1 ? Column : Row;
}

Vector::Vector(Vector const& other)
    : BasicObject(dataOf(RealArray(LegacyAccess::elements(other)), LegacyAccess::data(other).orientation)) {}

Vector::Vector(Vector&& other) noexcept = default;

Vector& Vector::operator=(Vector const& other) {
    if (this == &other)
        return *this; // moved-from or not
    if (!LegacyAccess::hasData(*this))
        return *this = Vector(other);
    VectorData const& source = LegacyAccess::data(other);
    VectorData& target = LegacyAccess::data(*this);
    target.values = source.values;
    target.orientation = source.orientation;
    return *this;
}

Vector& Vector::operator=(Vector&& other) noexcept = default;

Vector::~Vector() = default;

double const& Vector::operator[](std::size_t i) const {
    return LegacyAccess::elements(*this)[i];
}

double& Vector::operator[](std::size_t i) {
    return LegacyAccess::elements(*this)[i];
}

double const& Vector::operator[](Index const& i) const {
    VectorData const& data = LegacyAccess::data(*this);
    return data.values[data.orientation == Column ? i.row() : i.column()];
}

double& Vector::operator[](Index const& i) {
    VectorData& data = LegacyAccess::data(*this);
    return data.values[data.orientation == Column ? i.row() : i.column()];
}

Vector Vector::arange(int stop) {
    return arange(0, stop);
}

Vector Vector::arange(int start, int stop) {
    Vector result = LegacyAccess::uninitialisedVector(Detail::arangeLength(start, stop));
    RealArray& elements = LegacyAccess::elements(result);
    Detail::Kernels::arange(start, elements.data(), elements.length());
    return result;
}

Vector Vector::linspace(double const& start, double const& stop, std::size_t n) {
    Vector result = LegacyAccess::uninitialisedVector(n);
    Detail::Kernels::linspace(start, stop, LegacyAccess::elements(result).data(), n);
    return result;
}

Vector Vector::operator[](Slice const& slice) const {
    RealArray const& source = LegacyAccess::elements(*this);
    Detail::ResolvedSlice const selected = Detail::resolveSlice(slice, source.length());
    Vector result = LegacyAccess::uninitialisedVector(selected.count);
    RealArray& target = LegacyAccess::elements(result);
    for (std::size_t k = 0; k < selected.count; ++k)
        target[k] = source[selected.position(k)];
    return result;
}

double const& Vector::value(std::size_t i) const {
    return LegacyAccess::elements(*this)[i];
}

double const* Vector::data() const {
    return LegacyAccess::elements(*this).data();
}

double* Vector::data() {
    return LegacyAccess::elements(*this).data();
}

double const* Vector::begin() const {
    return LegacyAccess::elements(*this).begin();
}

double* Vector::begin() {
    return LegacyAccess::elements(*this).begin();
}

double const* Vector::end() const {
    return LegacyAccess::elements(*this).end();
}

double* Vector::end() {
    return LegacyAccess::elements(*this).end();
}

void Vector::reserve(std::size_t n) {
    LegacyAccess::elements(*this).reserve(n);
}

void Vector::resize(std::size_t n, double const& fill) {
    LegacyAccess::elements(*this).resize(n, fill);
}

Vector& Vector::sort() {
    RealArray& elements = LegacyAccess::elements(*this);
    Detail::Kernels::sort(elements.data(), elements.length());
    return *this;
}

std::vector<bool> Vector::operator<(double const& t) {
    return compared(LegacyAccess::elements(*this), t, std::less<>());
}

std::vector<bool> Vector::operator>(double const& t) {
    return compared(LegacyAccess::elements(*this), t, std::greater<>());
}

std::size_t Vector::columns() const {
    VectorData const& data = LegacyAccess::data(*this);
    return Detail::columnsOf(data.orientation, data.values.length());
}

std::size_t Vector::rows() const {
    VectorData const& data = LegacyAccess::data(*this);
    return Detail::rowsOf(data.orientation, data.values.length());
}

Dimensions Vector::size() const {
    VectorData const& data = LegacyAccess::data(*this);
    return Detail::shapeOf(data.orientation, data.values.length());
}

std::size_t Vector::length() const {
    return LegacyAccess::elements(*this).length();
}

VectorOrientation Vector::orientation() const {
    return LegacyAccess::data(*this).orientation;
}

} // namespace Tervane::Math
