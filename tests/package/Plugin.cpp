// A host's plugin that computes with the library: what PluginHost.cpp loads and unloads.
#include <Math/Math.h>

#include <cmath>

/// Computes on every runtime that stands behind the library: oneMKL's threads, the parallel algorithms'
/// workers, a transform, storage that the thread keeps, and an error of a category.
/// @return whether all came out right
extern "C" __attribute__((visibility("default"))) bool compute() {
    using namespace Tervane::Math;

    // Large enough for oneMKL and the parallel policies to use their threads.
    std::size_t const order = 300;
    Matrix2 const ones(order, order, 1.0);
    auto const product = BLAS::gemm(NoTranspose, NoTranspose, ones, ones);
    if (!product || (*product)[order - 1][order - 1] != static_cast<double>(order))
        return false;

    // One more on the diagonal than beside it: the solution is all ones.
    Matrix2 system = ones;
    for (std::size_t i = 0; i < order; ++i)
        system[i][i] = 2.0;
    Vector2 solution(order, static_cast<double>(order + 1));
    if (!LAPACK::gesv(system, solution) || std::abs(solution[order - 1] - 1.0) > 1e-9)
        return false;

    Vector2 const sines = sin(zeros(100000));
    if (sum(sines) != 0.0)
        return false;

    // Short, so that the thread keeps its storage until it ends.
    if (sum(zeros(100) + 1.0) != 100.0)
        return false;

    auto const spectrum = FFT::fft_real(zeros(100000) + 1.0);
    if (!spectrum || std::abs(spectrum->data()[0] - 100000.0) > 1e-6)
        return false;

    return !BLAS::gemm(NoTranspose, NoTranspose, ones, Matrix2(2, 2, 0.0)).has_value();
}
