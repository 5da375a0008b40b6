#include "foundation/Operations.h"
#include "legacy/Access.h"

#include <Math/ComplexVector.h>
#include <Math/Vector.h>

#include <utility>

using Tervane::Math::ComplexVector;

namespace Tervane::Math {

namespace {

using Detail::ComplexArray;
using Detail::ComplexVectorData;
using Detail::Divide;
using Detail::LegacyAccess;
using Detail::Multiply;
using Detail::transformed;
using Detail::withLeft;
using Detail::withRight;

using DataPointer = System::UniquePointer<System::ObjectData>;

// The elements come first, so that a length is refused before anything is allocated.
DataPointer dataOf(ComplexArray&& elements) {
    return DataPointer(new ComplexVectorData(std::move(elements)));
}

// The elements as the doubles that they consist of, real and imaginary parts in turn.
double* partsOf(ComplexArray& elements) {
    return reinterpret_cast<double*>(elements.data());
}

double const* partsOf(ComplexArray const& elements) {
    return reinterpret_cast<double const*>(elements.data());
}

} // namespace

ComplexVector::ComplexVector() : Object(DataPointer(new ComplexVectorData)) {}

ComplexVector::ComplexVector(std::size_t n) : Object(dataOf(ComplexArray(n))) {}

ComplexVector::ComplexVector(std::vector<std::complex<double>> const& values) : ComplexVector() {
    setData(reinterpret_cast<double const*>(values.data()), values.size());
}

ComplexVector::ComplexVector(ComplexVector const& other)
    : Object(dataOf(ComplexArray(LegacyAccess::elements(other)))) {}

ComplexVector::ComplexVector(ComplexVector&& other) noexcept = default;

ComplexVector& ComplexVector::operator=(ComplexVector&& other) noexcept = default;

ComplexVector::~ComplexVector() = default;

std::size_t ComplexVector::length() const {
    return LegacyAccess::elements(*this).length();
}

double* ComplexVector::data() {
    return partsOf(LegacyAccess::elements(*this));
}

double const* ComplexVector::data() const {
    return partsOf(LegacyAccess::elements(*this));
}

ComplexRef ComplexVector::operator[](std::size_t i) {
    return ComplexRef(data() + 2 * i);
}

ComplexView ComplexVector::operator[](std::size_t i) const {
    return ComplexView(data() + 2 * i);
}

ComplexVector::iterator ComplexVector::begin() {
    return iterator(data());
}

ComplexVector::iterator ComplexVector::end() {
    return iterator(data() + 2 * length());
}

void ComplexVector::reserve(std::size_t n) {
    LegacyAccess::elements(*this).reserve(n);
}

void ComplexVector::setData(double const* p, std::size_t n) {
    LegacyAccess::elements(*this).assign(reinterpret_cast<std::complex<double> const*>(p), n);
}

// Serial, and with a copy of `v` that nobody reads (compatibility C75): the product does not go through the
// dispatch, and always allocates.
ComplexVector operator*(ComplexVector&& z, Vector const& v) {
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the allocation is the point
    Vector const unread(v);
    ComplexArray& elements = LegacyAccess::elements(z);
    Detail::Kernels::independent(elements.data(), LegacyAccess::elements(v).data(), elements.data(),
                                 elements.length(), Multiply());
    return std::move(z);
}

ComplexVector operator*(Vector const& v, ComplexVector&& z) {
    return std::move(z) * v;
}

ComplexVector operator*(ComplexVector const& z, Vector const& v) {
    return ComplexVector(z) * v;
}

ComplexVector operator*(Vector const& v, ComplexVector const& z) {
    return ComplexVector(z) * v;
}

} // namespace Tervane::Math

// The operators with a scalar, which are global.

ComplexVector operator*(ComplexVector&& z, double const& s) {
    return Tervane::Math::transformed(std::move(z), Tervane::Math::withRight<Tervane::Math::Multiply>(s));
}

ComplexVector operator*(ComplexVector const& z, double const& s) {
    return Tervane::Math::transformed(z, Tervane::Math::withRight<Tervane::Math::Multiply>(s));
}

ComplexVector operator*(double const& s, ComplexVector&& z) {
    return Tervane::Math::transformed(std::move(z), Tervane::Math::withLeft<Tervane::Math::Multiply>(s));
}

ComplexVector operator*(double const& s, ComplexVector const& z) {
    return Tervane::Math::transformed(z, Tervane::Math::withLeft<Tervane::Math::Multiply>(s));
}

ComplexVector operator/(ComplexVector&& z, double const& s) {
    return Tervane::Math::transformed(std::move(z), Tervane::Math::withRight<Tervane::Math::Divide>(s));
}

ComplexVector operator/(ComplexVector const& z, double const& s) {
    return Tervane::Math::transformed(z, Tervane::Math::withRight<Tervane::Math::Divide>(s));
}
