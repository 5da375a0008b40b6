#include "faults/Operations.h"

#include <utility>

// At global scope, where the operators that are declared there are found.

namespace {

using namespace Tervane;
using namespace Tervane::Math;
using namespace Tervane::Math::Faults;
using namespace Tervane::Math::SignalProcessing;

constexpr char const* kind = "legacy";

#define A a = vector(1)
#define B b = vector(2)
#define C c = complexVector(4)
#define D d = 3.0

/// A view that outlives the calls.
ViewVector viewOfMany() {
    static Vector const many(600, 2.0);
    return ViewVector(many);
}

void addVectors(Table& table) {
#define ADDITIVE(op)                                                                                         \
    OPERATION(Throws, Used, std::move(a) op b, A, B);                                                        \
    OPERATION(Throws, Used, std::move(a) op std::move(b), A, B);                                             \
    OPERATION(Throws, Used, a op std::move(b), A, B);                                                        \
    OPERATION(Throws, Used, std::move(a) op d, A, D);                                                        \
    OPERATION(Throws, Kept, a op d, A, D);                                                                   \
    OPERATION(Throws, Used, d op std::move(a), A, D);                                                        \
    OPERATION(Throws, Kept, d op a, A, D);                                                                   \
    OPERATION(Throws, Used, a op## = b, A, B);                                                               \
    OPERATION(Throws, Used, a op## = ViewVector(b), A, B);
    ADDITIVE(+)
    ADDITIVE(-)
#undef ADDITIVE
    OPERATION(Throws, Used, std::move(a) * b, A, B);
    OPERATION(Throws, Used, std::move(a) * std::move(b), A, B);
    OPERATION(Throws, Used, a * std::move(b), A, B);
    OPERATION(Throws, Kept, a * b, A, B);
    OPERATION(Throws, Used, std::move(a) * d, A, D);
    OPERATION(Throws, Kept, a * d, A, D);
    OPERATION(Throws, Kept, d * std::move(a), A, D);
    OPERATION(Throws, Kept, d * a, A, D);
    OPERATION(Throws, Used, std::move(a) / d, A, D);
    OPERATION(Throws, Kept, a / d, A, D);
    OPERATION(Throws, Kept, -a, A);
    OPERATION(Throws, Used, -std::move(a), A);
    OPERATION(Throws, Kept, Vector(), );
    OPERATION(Throws, Kept, Vector(n), n = length);
    OPERATION(Throws, Kept, Vector(n, d), n = length, D);
    OPERATION(Throws, Kept, Vector(a.data(), a.length()), A);
    OPERATION(Throws, Kept, Vector(s), s = values(length, 3));
    OPERATION(Throws, Kept, (Vector{1.0, 2.0, 3.0}), );
    OPERATION(Throws, Kept, Vector(vs.data(), vs.size()), vs = std::vector<Vector>(3, vector(1)));
    OPERATION(Throws, Kept, (Vector{a, b}), A, B);
    OPERATION(Throws, Kept, Vector(static_cast<AbstractVector const&>(a)), A);
    OPERATION(Throws, Kept, Vector(Dimensions(length, 1), d), D);
    OPERATION(Throws, Kept, Vector(a), A);
    OPERATION(Throws, Used, Vector(std::move(a)), A);
    OPERATION(Throws, Kept, e = a, A, e = Vector());
    OPERATION(Throws, Kept, e = a, A, e = Vector(3, 1.0));
    OPERATION(Throws, Used, e = std::move(a), A, e = Vector());
    OPERATION(Throws, Kept, a[makeSlice(0, 100, 2)], A);
    OPERATION(Throws, Kept, (a.reserve(2 * length), a), A);
    OPERATION(Throws, Kept, (a.resize(2 * length, d), a), A, D);
    OPERATION(Throws, Kept, a < d, A, D);
    OPERATION(Throws, Kept, a > d, A, D);
    OPERATION(Throws, Kept, a.sort(), A);
    OPERATION(Throws, Kept, ViewVector().rows(), );
    OPERATION(Throws, Kept, ViewVector(a), A);
    OPERATION(Throws, Kept, ViewVector(a.data(), 5, Row), A);
    OPERATION(Throws, Kept, ViewVector(m, 1), m = matrix(30, 20, 1));
    OPERATION(Throws, Kept, ViewVector(v), v = viewOfMany());
    OPERATION(Throws, Used, ViewVector(std::move(v)), v = viewOfMany());
    OPERATION(Throws, Kept, e = v, v = viewOfMany(), e = ViewVector());
    OPERATION(Throws, Kept, v.sliced(1, 5), v = viewOfMany());
}

void addMatrices(Table& table) {
#define M m = matrix(30, 20, 1)
    OPERATION(Throws, Kept, Matrix(), );
    OPERATION(Throws, Kept, Matrix(length / 20, 20, d), D);
    OPERATION(Throws, Kept, Matrix(Dimensions(length / 20, 20), d), D);
    OPERATION(Throws, Kept, Matrix(static_cast<AbstractDataTable const&>(m)), M);
    OPERATION(Throws, Kept, Matrix(m), M);
    OPERATION(Throws, Used, Matrix(std::move(m)), M);
    OPERATION(Throws, Kept, e = m, M, e = Matrix());
    OPERATION(Throws, Used, e = std::move(m), M, e = Matrix());
    OPERATION(Throws, Kept, m.transposed(), M);
    OPERATION(Throws, Kept, m.resize(40, 25, d), M, D);
    OPERATION(Throws, Kept, (m.set(2, 2, d), m), M, D);
    OPERATION(Throws, Kept, (Matrix::stack({{m, m}, {m, m}})), M);
    OPERATION(SetsError, Kept, m.elementwiseMultiply(m, error), M);
    OPERATION(SetsError, Kept, m.multiply(m, error), m = matrix(7, 7, 1));
    OPERATION(SetsError, Kept, m.multiply(v, error), m = matrix(7, 7, 1), v = Vector(7, 2.0));
}

void addComplex(Table& table) {
    OPERATION(Throws, Kept, ComplexVector(), );
    OPERATION(Throws, Kept, ComplexVector(n), n = length);
    OPERATION(Throws, Kept, ComplexVector(s), s = std::vector<std::complex<double>>(length, {1.0, 2.0}));
    OPERATION(Throws, Kept, ComplexVector(c), C);
    OPERATION(Throws, Used, ComplexVector(std::move(c)), C);
    OPERATION(Throws, Used, e = std::move(c), C, e = ComplexVector());
    OPERATION(Throws, Kept, (c.reserve(2 * length), c), C);
    OPERATION(Throws, Kept, (c.setData(s.data(), s.size() / 2), c), C, s = values(4 * length, 1));
    OPERATION(Throws, Used, std::move(c) * d, C, D);
    OPERATION(Throws, Kept, c * d, C, D);
    OPERATION(Throws, Used, d * std::move(c), C, D);
    OPERATION(Throws, Kept, d * c, C, D);
    OPERATION(Throws, Used, std::move(c) / d, C, D);
    OPERATION(Throws, Kept, c / d, C, D);
    OPERATION(Throws, Used, std::move(c) * a, C, A);
    OPERATION(Throws, Used, a * std::move(c), C, A);
    OPERATION(Throws, Kept, c * a, C, A);
    OPERATION(Throws, Kept, a * c, C, A);
    OPERATION(Throws, Kept, abs(c), C);
}

void addFunctions(Table& table) {
#define FUNCTION(f)                                                                                          \
    OPERATION(Throws, Used, f(std::move(a)), A);                                                             \
    OPERATION(Throws, Kept, f(a), A);
    FUNCTION(abs)
    FUNCTION(sin)
    FUNCTION(cos)
    FUNCTION(exp)
    FUNCTION(log10)
    FUNCTION(sqrt)
#undef FUNCTION
    OPERATION(Throws, Used, pow(std::move(a), 2), A);
    OPERATION(Throws, Kept, pow(a, 2), A);
    OPERATION(Throws, Kept, sum(a), A);
    OPERATION(Throws, Kept, mean(a), A);
    OPERATION(Throws, Kept, max(a), A);
    OPERATION(Throws, Kept, len(a), A);
    OPERATION(Throws, Kept, zeros_old(length), );
    OPERATION(Throws, Kept, Vector::arange(static_cast<int>(length)), );
    OPERATION(Throws, Kept, Vector::arange(-5, static_cast<int>(length)), );
    OPERATION(Throws, Kept, Vector::linspace(1.0, 2.0, length), );
#define POINTS xp = Vector::linspace(1.0, 12.0, 12), fp = Vector::arange(12)
    OPERATION(Throws, Used, interp(std::move(a), xp, ViewVector(fp)), A, POINTS);
    OPERATION(Throws, Kept, interp(a, xp, ViewVector(fp)), A, POINTS);
    OPERATION(Throws, Kept, interp(a, xp, fp), A, POINTS);
    OPERATION(Throws, Kept, Window::hann(static_cast<int>(length)), );
    OPERATION(Throws, Kept, Window::hamming(static_cast<int>(length)), );
    OPERATION(Throws, Kept, Window::hamming(static_cast<int>(length), false), );
    OPERATION(Throws, Kept, Window::blackman(static_cast<int>(length)), );
    OPERATION(Throws, Kept, Window::blackman(static_cast<int>(length), false), );
}

void addLinearAlgebra(Table& table) {
#define SQUARE m = matrix(7, 7, 5)
#define SIDE v = Vector(7, 3.0)
    OPERATION(SetsError, Kept, BLAS::gemm(NoTranspose, Transposed, d, m, m, 0.0, r, error), SQUARE, D,
              r = matrix(7, 7, 1));
    OPERATION(SetsError, Kept, BLAS::gemm(NoTranspose, Transposed, d, m, m, error), SQUARE, D);
    OPERATION(SetsError, Kept, BLAS::gemm(NoTranspose, NoTranspose, m, m, error), SQUARE);
    OPERATION(SetsError, Kept, BLAS::gemv(NoTranspose, d, m, v, 0.0, r, error), SQUARE, SIDE, D,
              r = Vector(7));
    OPERATION(SetsError, Kept, BLAS::gemv(NoTranspose, d, m, v, error), SQUARE, SIDE, D);
    OPERATION(SetsError, Kept, BLAS::gemv(Transposed, m, v, error), SQUARE, SIDE);
    OPERATION(SetsError, Kept, BLAS::gesv(m, r, error), SQUARE, r = matrix(7, 3, 2));
    OPERATION(SetsError, Kept, BLAS::gesv(m, v, error), SQUARE, SIDE);
    OPERATION(SetsError, Kept, LAPACK::gesv(m, v, error), SQUARE, SIDE);
    OPERATION(SetsError, Kept, LAPACK::gels(NoTranspose, m, v, error), m = matrix(9, 4, 1),
              v = Vector(9, 2.0));
    OPERATION(SetsError, Kept, LAPACK::gelsd(m, v, error, -1.0), m = matrix(9, 4, 1), v = Vector(9, 2.0));
    OPERATION(SetsError, Kept, LAPACK::gglse(m, n, v, w, error), m = matrix(9, 4, 1), n = matrix(2, 4, 3),
              v = Vector(9, 2.0), w = Vector(2, 1.0));
    OPERATION(SetsError, Kept, BLAS::gemm(NoTranspose, NoTranspose, m, m, error), m = Matrix(100, 100, 1.0))
        .startsOpenMP = true;
    OPERATION(Throws, Used, LinearAlgebraResult(std::move(m), std::move(n), System::ErrorCode()).rss(1),
              m = matrix(9, 4, 1), n = matrix(9, 4, 1));
    OPERATION(Throws, Used, LinearAlgebraResult(std::move(v), std::move(w), System::ErrorCode()).rss(0),
              v = Vector(9, 2.0), w = Vector(2, 1.0));
    OPERATION(Throws, Kept, LinearAlgebraResult(System::ErrorCode()).rss(0), );
    OPERATION(Throws, Kept, l.solution(1),
              l = LinearAlgebraResult(matrix(9, 4, 1), matrix(9, 4, 1), System::ErrorCode()));
    OPERATION(Throws, Kept, l.residuals(1),
              l = LinearAlgebraResult(matrix(9, 4, 1), matrix(9, 4, 1), System::ErrorCode()));
}

void addSignal(Table& table) {
    OPERATION(LeavesResult, Kept, FFT::fft_real(v, error), v = Vector(1024, 1.0));
    OPERATION(LeavesResult, Kept, FFT::fft_real(v, error), v = Vector(1021, 1.0));
    OPERATION(LeavesResult, Kept, FFT::ifft_real(c, 1000, error), c = ComplexVector(501));
    OPERATION(LeavesResult, Kept, FFT::fft_real(v, error), v = Vector(100000, 1.0)).startsOpenMP = true;
}

} // namespace

void Tervane::Math::Faults::addLegacyOperations(Table& table) {
    addVectors(table);
    addMatrices(table);
    addComplex(table);
    addFunctions(table);
    addLinearAlgebra(table);
    addSignal(table);
}
