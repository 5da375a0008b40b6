/// @file
/// A Python module that hands NumPy arrays to the library and gives its vectors to NumPy.

#include <Math/Math.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <stdexcept>

namespace {

namespace py = pybind11;
using namespace Tervane::Math;

/// Contiguous doubles: NumPy converts what is not.
using Array = py::array_t<double, py::array::c_style | py::array::forcecast>;

Vector2 toVector(Array const& array) {
    if (array.ndim() != 1) {
        throw std::invalid_argument("an array of one dimension is needed");
    }
    return Vector2(array.data(), static_cast<std::size_t>(array.size())); // copies
}

/// The library's errors become Python's exceptions.
Vector2 spectrumOf(Array const& samples) {
    auto const spectrum = FFT::fft_real(toVector(samples));
    if (!spectrum) {
        throw std::runtime_error(spectrum.error().message().narrow());
    }
    return abs(*spectrum);
}

} // namespace

PYBIND11_MODULE(tvnmath_numpy, module) {
    // numpy.asarray(vector) looks at the elements in place, and keeps the vector alive meanwhile.
    py::class_<Vector2>(module, "Vector2", py::buffer_protocol())
        .def(py::init(&toVector))
        .def("__len__", &Vector2::length)
        .def_buffer(
            [](Vector2& v) { return py::buffer_info(v.data(), static_cast<py::ssize_t>(v.length())); });
    module.def("spectrum", &spectrumOf, "The magnitudes of the one-sided spectrum of real samples");
}
