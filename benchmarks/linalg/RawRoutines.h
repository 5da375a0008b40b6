#pragma once

/// @file
/// oneMKL as a caller without the library would use it: Fortran's routines with their sizes by address.

#include <mkl_blas.h>
#include <mkl_lapack.h>

#include <cstddef>
#include <vector>

namespace Tervane::Math::Bench {

inline void rawGemm(std::size_t n, double const* a, double const* b, double* c) {
    MKL_INT const size = static_cast<MKL_INT>(n);
    double const alpha = 1.0, beta = 0.0;
    dgemm("N", "N", &size, &size, &size, &alpha, a, &size, b, &size, &beta, c, &size);
}

inline void rawGemv(std::size_t n, double const* a, double const* x, double* y) {
    MKL_INT const size = static_cast<MKL_INT>(n), one = 1;
    double const alpha = 1.0, beta = 0.0;
    dgemv("N", &size, &size, &alpha, a, &size, x, &one, &beta, y, &one);
}

inline bool rawGesv(std::size_t n, double* a, double* b) {
    MKL_INT const size = static_cast<MKL_INT>(n), one = 1;
    MKL_INT info = 0;
    std::vector<MKL_INT> pivots(n);
    dgesv(&size, &one, a, &size, pivots.data(), b, &size, &info);
    return info == 0;
}

inline bool rawGels(std::size_t m, std::size_t n, double* a, double* b) {
    MKL_INT const rows = static_cast<MKL_INT>(m), columns = static_cast<MKL_INT>(n), one = 1;
    MKL_INT info = 0, length = -1;
    double wanted = 0.0;
    dgels("N", &rows, &columns, &one, a, &rows, b, &rows, &wanted, &length, &info);
    length = static_cast<MKL_INT>(wanted);
    std::vector<double> work(static_cast<std::size_t>(length));
    dgels("N", &rows, &columns, &one, a, &rows, b, &rows, work.data(), &length, &info);
    return info == 0;
}

inline bool rawGelsd(std::size_t m, std::size_t n, double* a, double* b) {
    MKL_INT const rows = static_cast<MKL_INT>(m), columns = static_cast<MKL_INT>(n), one = 1;
    MKL_INT info = 0, length = -1, rank = 0, wantedIntegers = 0;
    double wanted = 0.0;
    double const rcond = -1.0;
    std::vector<double> singularValues(n);
    dgelsd(&rows, &columns, &one, a, &rows, b, &rows, singularValues.data(), &rcond, &rank, &wanted, &length,
           &wantedIntegers, &info);
    length = static_cast<MKL_INT>(wanted);
    std::vector<double> work(static_cast<std::size_t>(length));
    std::vector<MKL_INT> integerWork(static_cast<std::size_t>(wantedIntegers));
    dgelsd(&rows, &columns, &one, a, &rows, b, &rows, singularValues.data(), &rcond, &rank, work.data(),
           &length, integerWork.data(), &info);
    return info == 0;
}

} // namespace Tervane::Math::Bench
