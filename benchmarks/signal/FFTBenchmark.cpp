// Real transforms against the raw descriptor interface. Both sides make a descriptor for each transform and a
// container for its result.

#include "limits/Limits.h"

#include <Math/FFT.h>

#include <benchmark/benchmark.h>

#include <mkl_dfti.h>

#include <cstddef>

namespace Tervane::Math::Bench {

namespace {

Vector2 signal(std::size_t n) {
    Vector2 x(n);
    for (std::size_t i = 0; i < n; ++i)
        x[i] = static_cast<double>(i * 7919 % 1009) - 504.0;
    return x;
}

std::size_t sizeOf(benchmark::State const& state) {
    return static_cast<std::size_t>(state.range(0));
}

void forwardLibrary(benchmark::State& state) {
    Vector2 const x = signal(sizeOf(state));
    for (auto _ : state) {
        auto const spectrum = FFT::fft_real(x);
        benchmark::DoNotOptimize(spectrum.value().data());
        benchmark::ClobberMemory();
    }
}

void forwardOneMKL(benchmark::State& state) {
    std::size_t const n = sizeOf(state);
    Vector2 x = signal(n);
    for (auto _ : state) {
        ComplexVector2 spectrum(n / 2 + 1);
        DFTI_DESCRIPTOR_HANDLE handle = nullptr;
        MKL_LONG status = DftiCreateDescriptor_d_1d(&handle, DFTI_REAL, static_cast<MKL_LONG>(n));
        status |= DftiSetValue(handle, DFTI_PLACEMENT, DFTI_NOT_INPLACE);
        status |= DftiSetValue(handle, DFTI_CONJUGATE_EVEN_STORAGE, DFTI_COMPLEX_COMPLEX);
        status |= DftiCommitDescriptor(handle);
        status |= DftiComputeForward(handle, x.data(), spectrum.data());
        status |= DftiFreeDescriptor(&handle);
        if (status != 0)
            state.SkipWithError("not transformed");
        benchmark::DoNotOptimize(spectrum.data());
        benchmark::ClobberMemory();
    }
}

void backwardLibrary(benchmark::State& state) {
    auto const spectrum = FFT::fft_real(signal(sizeOf(state)));
    for (auto _ : state) {
        auto const x = FFT::ifft_real(spectrum.value(), sizeOf(state));
        benchmark::DoNotOptimize(x.value().data());
        benchmark::ClobberMemory();
    }
}

void backwardOneMKL(benchmark::State& state) {
    std::size_t const n = sizeOf(state);
    auto spectrum = FFT::fft_real(signal(n));
    for (auto _ : state) {
        Vector2 x(n);
        DFTI_DESCRIPTOR_HANDLE handle = nullptr;
        MKL_LONG status = DftiCreateDescriptor_d_1d(&handle, DFTI_REAL, static_cast<MKL_LONG>(n));
        status |= DftiSetValue(handle, DFTI_PLACEMENT, DFTI_NOT_INPLACE);
        status |= DftiSetValue(handle, DFTI_CONJUGATE_EVEN_STORAGE, DFTI_COMPLEX_COMPLEX);
        status |= DftiSetValue(handle, DFTI_BACKWARD_SCALE, 1.0 / static_cast<double>(n));
        status |= DftiCommitDescriptor(handle);
        status |= DftiComputeBackward(handle, spectrum.value().data(), x.data());
        status |= DftiFreeDescriptor(&handle);
        if (status != 0)
            state.SkipWithError("not transformed");
        benchmark::DoNotOptimize(x.data());
        benchmark::ClobberMemory();
    }
}

[[maybe_unused]] bool const registered = [] {
    for (auto const n : {4, 16, 64, 1024, 1000, 4096, 65'536, 100'003}) {
        benchmark::RegisterBenchmark("RealFFT/onemkl", forwardOneMKL)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark("RealFFT/library", forwardLibrary)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark("InverseRealFFT/onemkl", backwardOneMKL)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark("InverseRealFFT/library", backwardLibrary)->Arg(n)->UseRealTime();
        registerLoopLimit("RealFFT", "a", n);
        registerLoopLimit("InverseRealFFT", "a", n);
    }
    return true;
}();

} // namespace

} // namespace Tervane::Math::Bench
