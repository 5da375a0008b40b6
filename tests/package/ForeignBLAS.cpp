// A simulator that links a BLAS with 32-bit integers of its own: these definitions stand for it. The library
// must not call them, and they must stay what they are for the program.

#include <Math/BLAS.h>
#include <Math/LAPACK.h>

#include <cstdio>

namespace {

int calls = 0;

} // namespace

extern "C" {

void dgemm_(char const*, char const*, int const*, int const*, int const*, double const*, double const*,
            int const*, double const*, int const*, double const*, double*, int const*);
void dgesv_(int const*, int const*, double*, int const*, int*, double*, int const*, int*);
void dgemm(char const*, char const*, int const*, int const*, int const*, double const*, double const*,
           int const*, double const*, int const*, double const*, double*, int const*);
void xerbla_(char const*, int const*, int);
void xerbla(char const*, int const*, int);

void dgemm_(char const*, char const*, int const*, int const*, int const*, double const*, double const*,
            int const*, double const*, int const*, double const*, double* c, int const*) {
    ++calls;
    *c = -1.0;
}
void dgesv_(int const*, int const*, double*, int const*, int*, double* b, int const*, int* info) {
    ++calls;
    *b = -1.0;
    *info = 0;
}
void dgemm(char const*, char const*, int const*, int const*, int const*, double const*, double const*,
           int const*, double const*, int const*, double const*, double* c, int const*) {
    ++calls;
    *c = -1.0;
}
void xerbla_(char const*, int const*, int) {
    ++calls;
}
void xerbla(char const*, int const*, int) {
    ++calls;
}

} // extern "C"

int main() {
    using namespace Tervane::Math;

    // The library computes with its own routines, and reports a refused argument through its own handler.
    Matrix2 const a(3, 3, 1.0);
    auto const product = BLAS::gemm(NoTranspose, NoTranspose, a, a);
    bool const productIsRight = product && (*product)[0][0] == 3.0;
    Matrix2 diagonal(2, 2, 0.0);
    diagonal[0][0] = diagonal[1][1] = 2.0;
    Vector2 b(2, 4.0);
    bool const solutionIsRight = LAPACK::gesv(diagonal, b) && b[0] == 2.0 && b[1] == 2.0;
    Matrix2 square(2, 2, 1.0);
    Vector2 tooShort(1, 1.0);
    bool const refusalIsReported = !LAPACK::gels(NoTranspose, square, tooShort);
    bool const libraryIsUndisturbed = productIsRight && solutionIsRight && refusalIsReported && calls == 0;

    // The program still reaches its own.
    double c = 0.0;
    int const one = 1;
    int info = 1;
    int pivot = 0;
    dgemm_("N", "N", &one, &one, &one, &c, &c, &one, &c, &one, &c, &c, &one);
    dgesv_(&one, &one, &c, &one, &pivot, &c, &one, &info);
    xerbla_("NONE", &one, 4);
    bool const programIsUndisturbed = calls == 3 && c == -1.0 && info == 0;

    if (!libraryIsUndisturbed || !programIsUndisturbed)
        std::printf("library %d, program %d, calls %d\n", libraryIsUndisturbed, programIsUndisturbed, calls);
    return libraryIsUndisturbed && programIsUndisturbed ? 0 : 1;
}
