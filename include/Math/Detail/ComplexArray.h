#pragma once

/// @file
/// The storage of complex elements, apart from that of real ones: the standard header of complex numbers
/// includes the streams. Not an interface for callers.

#include <Math/Detail/ElementArray.h>

#include <complex>
#include <memory>

namespace Tervane::Math::Detail {

/// Complex elements, real part first, from the ordinary heap.
using ComplexArray = ElementArray<std::complex<double>, std::allocator<std::complex<double>>>;

} // namespace Tervane::Math::Detail
