#include "faults/Operations.h"

#include <utility>

// At global scope, where the operators that are declared there are found.

namespace {

using namespace Tervane;
using namespace Tervane::Math;
using namespace Tervane::Math::Faults;

constexpr char const* kind = "current";

// a and b are vectors, w is a view of another, d, i and z are scalars.
#define A a = vector2(1)
#define B b = vector2(2)
#define W seen = vector2(3), w = VectorView2()
#define VIEW (w = VectorView2(seen.data(), seen.length(), Column))
#define D d = 3.0
#define I i = 2
#define Z z = std::size_t(4)

#define EACH_ARITHMETIC_OPERATION(apply) apply(+) apply(-) apply(*) apply(/)

void addArithmetic(Table& table) {
#define VECTORS(op)                                                                                          \
    OPERATION(Throws, Used, std::move(a) op std::move(b), A, B);                                             \
    OPERATION(Throws, Used, std::move(a) op b, A, B);                                                        \
    OPERATION(Throws, Used, a op std::move(b), A, B);                                                        \
    OPERATION(Throws, Kept, a op b, A, B);                                                                   \
    OPERATION(Throws, Used, std::move(a) op VIEW, A, W);                                                     \
    OPERATION(Throws, Kept, a op VIEW, A, W);                                                                \
    OPERATION(Throws, Used, VIEW op std::move(b), B, W);                                                     \
    OPERATION(Throws, Kept, VIEW op b, B, W);                                                                \
    OPERATION(Throws, Used, std::move(a) op d, A, D);                                                        \
    OPERATION(Throws, Kept, a op d, A, D);                                                                   \
    OPERATION(Throws, Used, std::move(a) op i, A, I);                                                        \
    OPERATION(Throws, Kept, a op i, A, I);                                                                   \
    OPERATION(Throws, Used, d op std::move(a), A, D);                                                        \
    OPERATION(Throws, Kept, d op a, A, D);                                                                   \
    OPERATION(Throws, Used, i op std::move(a), A, I);                                                        \
    OPERATION(Throws, Kept, i op a, A, I);                                                                   \
    OPERATION(Throws, Used, a op## = b, A, B);                                                               \
    OPERATION(Throws, Used, a op## = VIEW, A, W);                                                            \
    OPERATION(Throws, Used, a op## = d, A, D);                                                               \
    OPERATION(Throws, Used, a op## = i, A, I);
    EACH_ARITHMETIC_OPERATION(VECTORS)
#undef VECTORS
    OPERATION(Throws, Kept, VIEW - d, W, D);
    OPERATION(Throws, Kept, VIEW - i, W, I);
    OPERATION(Throws, Kept, d - VIEW, W, D);
    OPERATION(Throws, Kept, i - VIEW, W, I);
    OPERATION(Throws, Used, std::move(a) / z, A, Z);
    OPERATION(Throws, Kept, a / z, A, Z);
    OPERATION(Throws, Used, a /= z, A, Z);
    OPERATION(Throws, Kept, -a, A);
    OPERATION(Throws, Used, -std::move(a), A);
}

void addComplexArithmetic(Table& table) {
#define C c = complex2(4)
    OPERATION(Throws, Used, std::move(c) * d, C, D);
    OPERATION(Throws, Kept, c * d, C, D);
    OPERATION(Throws, Used, d * std::move(c), C, D);
    OPERATION(Throws, Kept, d * c, C, D);
    OPERATION(Throws, Used, std::move(c) * a, C, A);
    OPERATION(Throws, Kept, c * a, C, A);
    OPERATION(Throws, Used, a * std::move(c), C, A);
    OPERATION(Throws, Kept, a * c, C, A);
    OPERATION(Throws, Kept, c.view() * a, C, A);
    OPERATION(Throws, Used, std::move(c) / d, C, D);
    OPERATION(Throws, Kept, c / d, C, D);
    OPERATION(Throws, Used, d / std::move(c), C, D);
    OPERATION(Throws, Kept, d / c, C, D);
    OPERATION(Throws, Used, c *= d, C, D);
    OPERATION(Throws, Used, c /= d, C, D);
    OPERATION(Throws, Used, c *= a, C, A);
    OPERATION(Throws, Kept, abs(c), C);
    OPERATION(Throws, Kept, ComplexVector2(c), C);
    OPERATION(Throws, Used, ComplexVector2(std::move(c)), C);
    OPERATION(Throws, Kept, e = c, C, e = ComplexVector2());
    OPERATION(Throws, Used, e = std::move(c), C, e = ComplexVector2());
    OPERATION(Throws, Kept, ComplexVector2(n), n = length);
    OPERATION(ReturnsError, Kept, ComplexVector2::fromData(a.data(), a.length()), A);
    OPERATION(ReturnsError, Kept, c.toString(), c = ComplexVector2(20));
    OPERATION(Throws, Kept, c.view().sliced(1, 5), C);
    OPERATION(Throws, Kept, std::size_t(c.size().rows()), C);
}

void addContainers(Table& table) {
#define M m = matrix2(30, 20, 5)
    OPERATION(Throws, Kept, Vector2());
    OPERATION(Throws, Kept, Vector2(n), n = length);
    OPERATION(Throws, Kept, Vector2(n, d), n = length, D);
    OPERATION(Throws, Kept, Vector2(a.data(), a.length()), A);
    OPERATION(Throws, Kept, Vector2(VIEW), W);
    OPERATION(Throws, Kept, Vector2(a), A);
    OPERATION(Throws, Used, Vector2(std::move(a)), A);
    OPERATION(Throws, Kept, e = a, A, e = Vector2());
    OPERATION(Throws, Kept, e = a, A, e = Vector2(3, 1.0));
    OPERATION(Throws, Used, e = std::move(a), A, e = Vector2());
    OPERATION(Throws, Kept, a[makeSlice(0, 100, 2)], A);
    OPERATION(Throws, Kept, (a.reserve(2 * a.length()), a), A);
    OPERATION(ReturnsError, Kept, a.resize(2 * length, d), A, D);
    OPERATION(ReturnsError, Kept, a.resize(5), A);
    OPERATION(ReturnsError, Kept, a.toString(), a = Vector2(20, 1.5));
    OPERATION(Throws, Kept, VectorView2(m, 1), M);
    OPERATION(Throws, Kept, Matrix2(), );
    OPERATION(Throws, Kept, Matrix2(length / 20, 20, d), D);
    OPERATION(Throws, Kept, Matrix2(Dimensions(length / 20, 20), d), D);
    OPERATION(Throws, Kept, Matrix2(m), M);
    OPERATION(Throws, Used, Matrix2(std::move(m)), M);
    OPERATION(Throws, Kept, e = m, M, e = Matrix2());
    OPERATION(Throws, Used, e = std::move(m), M, e = Matrix2());
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
    FUNCTION(sort)
#undef FUNCTION
    OPERATION(Throws, Used, pow(std::move(a), i), A, I);
    OPERATION(Throws, Kept, pow(a, i), A, I);
    OPERATION(Throws, Kept, sum(a), A);
    OPERATION(Throws, Kept, mean(a), A);
    OPERATION(Throws, Kept, max(a), A);
    OPERATION(Throws, Kept, len(a), A);
    OPERATION(Throws, Kept, len(VIEW), W);
    OPERATION(Throws, Kept, zeros(length), );
    OPERATION(Throws, Kept, arange(static_cast<int>(length)), );
    OPERATION(Throws, Kept, arange(-5, static_cast<int>(length)), );
    OPERATION(Throws, Kept, linspace(1.0, 2.0, length), );
    OPERATION(Throws, Kept, floordiv(7.0, d), D);
    OPERATION(Throws, Kept, floordiv(z, d), Z, D);
#define POINTS xp = linspace(1.0, 12.0, 12), fp = arange(12)
    OPERATION(Throws, Used, interp(std::move(a), xp, fp), A, POINTS);
    OPERATION(Throws, Used, interp(std::move(a), xp, VectorView2(fp.data(), fp.length(), Column)), A, POINTS);
    OPERATION(Throws, Kept, interp(a, xp, fp), A, POINTS);
    OPERATION(Throws, Kept, interp(a, xp, VectorView2(fp.data(), fp.length(), Column)), A, POINTS);
    OPERATION(Throws, Kept, interp(d, xp, fp), D, POINTS);
    OPERATION(Throws, Kept, Random::uniform(d, d, length), D);
    OPERATION(Throws, Kept, Random::uniform(d, d, length / 20, 20), D);
}

void addLinearAlgebra(Table& table) {
#define SQUARE m = matrix2(7, 7, 5)
#define SIDE v = Vector2(7, 3.0)
    OPERATION(ReturnsError, Kept, BLAS::gemm(NoTranspose, Transposed, d, m, m, 0.0, r), SQUARE, D,
              r = matrix2(7, 7, 1));
    OPERATION(ReturnsError, Kept, BLAS::gemm(NoTranspose, Transposed, d, m, m), SQUARE, D);
    OPERATION(ReturnsError, Kept, BLAS::gemm(NoTranspose, NoTranspose, m, m), SQUARE);
    OPERATION(ReturnsError, Kept, BLAS::gemv(NoTranspose, d, m, v, 0.0, r), SQUARE, SIDE, D, r = Vector2(7));
    OPERATION(ReturnsError, Kept, BLAS::gemv(NoTranspose, d, m, v), SQUARE, SIDE, D);
    OPERATION(ReturnsError, Kept, BLAS::gemv(Transposed, m, v), SQUARE, SIDE);
    OPERATION(ReturnsError, Kept, BLAS::gesv(m, r), SQUARE, r = matrix2(7, 3, 2));
    OPERATION(ReturnsError, Kept, BLAS::gesv(m, v), SQUARE, SIDE);
    OPERATION(ReturnsError, Kept, LAPACK::gesv(m, v), SQUARE, SIDE);
    OPERATION(ReturnsError, Kept, LAPACK::gels(NoTranspose, m, v), m = matrix2(9, 4, 1), v = Vector2(9, 2.0));
    OPERATION(ReturnsError, Kept, LAPACK::gelsd(m, v, -1.0), m = matrix2(9, 4, 1), v = Vector2(9, 2.0));
    OPERATION(ReturnsError, Kept, LAPACK::gglse(m, n, v, w), m = matrix2(9, 4, 1), n = matrix2(2, 4, 3),
              v = Vector2(9, 2.0), w = Vector2(2, 1.0));
#define LARGE m = Matrix2(100, 100, 1.0)
    OPERATION(ReturnsError, Kept, BLAS::gemm(NoTranspose, NoTranspose, m, m), LARGE).startsOpenMP = true;
    OPERATION(ReturnsError, Kept, BLAS::gemv(NoTranspose, m, v), m = Matrix2(300, 300, 1.0),
              v = Vector2(300, 1.0))
        .startsOpenMP = true;
    OPERATION(ReturnsError, Kept, BLAS::gesv(m, v), m = matrix2(100, 100, 1), v = Vector2(100, 1.0))
        .startsOpenMP = true;
    OPERATION(ReturnsError, Kept, LAPACK::gelsd(m, v, -1.0), m = matrix2(60, 40, 1), v = Vector2(60, 1.0))
        .startsOpenMP = true;
}

void addSignal(Table& table) {
    // Below the length from which oneMKL uses threads: a power of two, a composite, a prime.
    OPERATION(ReturnsError, Kept, FFT::fft_real(v), v = Vector2(1024, 1.0));
    OPERATION(ReturnsError, Kept, FFT::fft_real(v), v = Vector2(1020, 1.0));
    OPERATION(ReturnsError, Kept, FFT::fft_real(v), v = Vector2(1021, 1.0));
    OPERATION(ReturnsError, Kept, FFT::ifft_real(c, 1000), c = ComplexVector2(501));
    OPERATION(ReturnsError, Kept, FFT::fft_real(v), v = Vector2(100000, 1.0)).startsOpenMP = true;
}

} // namespace

void Tervane::Math::Faults::addCurrentOperations(Table& table) {
    addArithmetic(table);
    addComplexArithmetic(table);
    addContainers(table);
    addFunctions(table);
    addLinearAlgebra(table);
    addSignal(table);
}
