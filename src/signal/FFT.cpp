#include "foundation/OneMKLThreads.h"
#include "signal/DescriptorReserve.h"
#include "signal/FourierStatus.h"

#include <Math/ComplexVector.h>
#include <Math/Errors.h>
#include <Math/FFT.h>
#include <Math/Vector.h>
#include <System/Exceptions.h>
#include <System/Guard.h>

#include <mkl_dfti.h>

namespace Tervane::Math {

namespace {

/// The bins of the one-sided spectrum of n real samples.
constexpr std::size_t binsOf(std::size_t n) {
    return n / 2 + 1;
}

/// What oneMKL needs around it while it transforms.
struct TransformScope {
    /// The shortest signal that oneMKL was seen to spread had 8,228 samples.
    explicit TransformScope(std::size_t n) : threads(n > 4096) {}

    Detail::OneMKL::ThreadUse threads;
    Detail::DescriptorReserve reserve;
};

// The two transforms on plain memory, written once: a descriptor's life as oneMKL wants it. `check` is given
// the status of each call in turn. In the current generation it throws at the first failure, so that the
// calls after it are not made, and the one that frees the descriptor neither: it stays (compatibility C57).
// In the legacy generation all calls are made, and none is looked at.

template<class Check>
DFTI_DESCRIPTOR_HANDLE prepare(std::size_t n, Check const& check) {
    DFTI_DESCRIPTOR_HANDLE handle = nullptr;
    check(DftiCreateDescriptor_d_1d(&handle, DFTI_REAL, static_cast<MKL_LONG>(n)));
    check(DftiSetValue(handle, DFTI_PLACEMENT, DFTI_NOT_INPLACE));
    check(DftiSetValue(handle, DFTI_CONJUGATE_EVEN_STORAGE, DFTI_COMPLEX_COMPLEX));
    return handle;
}

/// @param spectrum room for binsOf(n) interleaved pairs
template<class Check>
void transformForward(double const* samples, std::size_t n, double* spectrum, Check const& check) {
    TransformScope const scope(n);
    DFTI_DESCRIPTOR_HANDLE handle = prepare(n, check);
    check(DftiCommitDescriptor(handle));
    // Out of place, so the input is only read.
    check(DftiComputeForward(handle, const_cast<double*>(samples), spectrum));
    check(DftiFreeDescriptor(&handle));
}

/// @param samples room for n doubles
template<class Check>
void transformBackward(double const* spectrum, std::size_t n, double* samples, Check const& check) {
    TransformScope const scope(n);
    DFTI_DESCRIPTOR_HANDLE handle = prepare(n, check);
    check(DftiSetValue(handle, DFTI_BACKWARD_SCALE, 1.0 / static_cast<double>(n)));
    check(DftiCommitDescriptor(handle));
    check(DftiComputeBackward(handle, const_cast<double*>(spectrum), samples));
    check(DftiFreeDescriptor(&handle));
}

void raiseFailure(MKL_LONG status) {
    if (status != 0)
        throw System::SystemError(Detail::fourierError(status));
}

// The legacy generation reports no status (compatibility C58).
void ignoreFailure(MKL_LONG /*status*/) {}

} // namespace

namespace FFT {

System::Expected<ComplexVector2, System::ErrorCode2> fft_real(Vector2 const& x) {
    return System::guard<ComplexVector2>([&] {
        ComplexVector2 spectrum(binsOf(x.length()));
        transformForward(x.data(), x.length(), spectrum.data(), raiseFailure);
        return spectrum;
    });
}

System::Expected<Vector2, System::ErrorCode2> ifft_real(ComplexVector2 const& X, std::size_t n) {
    return System::guard<Vector2>([&] {
        Vector2 samples(n);
        transformBackward(X.data(), n, samples.data(), raiseFailure);
        return samples;
    });
}

ComplexVector fft_real(Vector const& x, System::ErrorCode& /*error*/) {
    ComplexVector spectrum(binsOf(x.length()));
    transformForward(x.data(), x.length(), spectrum.data(), ignoreFailure);
    return spectrum;
}

Vector ifft_real(ComplexVector const& X, std::size_t n, System::ErrorCode& /*error*/) {
    Vector samples(n);
    transformBackward(X.data(), n, samples.data(), ignoreFailure);
    return samples;
}

} // namespace FFT

} // namespace Tervane::Math
