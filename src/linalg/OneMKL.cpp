#include "linalg/OneMKL.h"

#include "foundation/OneMKLThreads.h"

#include <fenv.h>
#include <mkl_blas.h>
#include <mkl_lapack.h>

#include <algorithm>
#include <type_traits>
#include <vector>

namespace Tervane::Math::Detail::OneMKL {

static_assert(std::is_same_v<MKL_INT, Integer>, "the 64-bit-integer interface is compiled against");

namespace {

/// An integer as the routines take it, by its address, for the call that it is written in.
class Size {
public:
    explicit Size(std::size_t n) : _n(static_cast<MKL_INT>(n)) {}
    operator MKL_INT const*() const noexcept { return &_n; }

private:
    MKL_INT _n;
};

/// Elements of a vector are adjacent, and drivers have one right-hand side.
MKL_INT const one = 1;

char const* flagOf(Transpose trans) {
    switch (trans) {
    case Transposed:
        return "T";
    case ConjugateTransposed:
        return "C";
    case NoTranspose:
    default:
        return "N";
    }
}

/// Whether oneMKL may spread a product of so many multiplications, on operands of at most so long a side.
/// Twice below the smallest that it was seen to spread: 12,200 multiplications, or a side of 134.
bool mayBeSpread(std::size_t m, std::size_t n, std::size_t k) {
    if (std::max({m, n, k}) > 64)
        return true;
    return m * n * k > 6000;
}

/// Whether oneMKL multiplies such a matrix by a vector without so much as asking for the number of threads.
/// Telling it that there is one, and taking that back, would be a third of a product of 4 rows. It was seen
/// to ask from 105 rows and columns on, and asks from 64 on where the processor is an old one.
bool asksForNoThreads(std::size_t m, std::size_t n) {
    return std::max(m, n) < 64;
}

/// The same of a least-squares driver. The smallest that it was seen to spread had a side of 27.
bool mayBeSpread(std::size_t m, std::size_t n) {
    return std::max(m, n) > 16;
}

/// Keeps the drivers' own floating-point exceptions from trapping in a host that has unmasked some: the
/// singular value decomposition underflows on the way to good results. Which exceptions there were is told
/// afterwards.
class HeldTraps {
public:
    HeldTraps() noexcept : _enabled(fegetexcept()) {
        if (_enabled != 0)
            feholdexcept(&_environment);
    }
    ~HeldTraps() {
        if (_enabled == 0)
            return;
        // What would have trapped stays untold: a flag beside its unmasked trap would set it off later.
        int const told = FE_ALL_EXCEPT & ~_enabled;
        fexcept_t flags;
        fegetexceptflag(&flags, told);
        int const raised = fetestexcept(told);
        fesetenv(&_environment);
        fesetexceptflag(&flags, raised);
    }

    HeldTraps(HeldTraps const&) = delete;
    HeldTraps& operator=(HeldTraps const&) = delete;

private:
    int _enabled;
    fenv_t _environment;
};

} // namespace

void gemm(Transpose transA, Transpose transB, std::size_t m, std::size_t n, std::size_t k, double alpha,
          double const* a, std::size_t lda, double const* b, std::size_t ldb, double beta, double* c,
          std::size_t ldc) {
    ThreadUse const threads(mayBeSpread(m, n, k));
    dgemm(flagOf(transA), flagOf(transB), Size(m), Size(n), Size(k), &alpha, a, Size(lda), b, Size(ldb),
          &beta, c, Size(ldc));
}

void gemv(Transpose trans, std::size_t m, std::size_t n, double alpha, double const* a, std::size_t lda,
          double const* x, double beta, double* y) {
    auto const multiply = [&] {
        dgemv(flagOf(trans), Size(m), Size(n), &alpha, a, Size(lda), x, &one, &beta, y, &one);
    };
    if (asksForNoThreads(m, n))
        return multiply();
    ThreadUse const threads(mayBeSpread(m, n, 1));
    multiply();
}

Outcome gesv(std::size_t n, std::size_t nrhs, double* a, double* b) {
    std::vector<MKL_INT> pivots(n);
    ThreadUse const threads(mayBeSpread(n, n, n + nrhs));
    HeldTraps const traps;
    MKL_INT info = 0;
    dgesv(Size(n), Size(nrhs), a, Size(n), pivots.data(), b, Size(n), &info);
    return {info};
}

Outcome gels(Transpose trans, std::size_t m, std::size_t n, double* a, std::size_t lda, double* b,
             std::size_t ldb, double* work, Integer lwork) {
    ThreadUse const threads(mayBeSpread(m, n));
    HeldTraps const traps;
    MKL_INT info = 0;
    dgels(flagOf(trans), Size(m), Size(n), &one, a, Size(lda), b, Size(ldb), work, &lwork, &info);
    return {info};
}

Outcome gelsd(std::size_t m, std::size_t n, double* a, std::size_t lda, double* b, std::size_t ldb, double* s,
              double rcond, double* work, Integer lwork, Integer* iwork) {
    ThreadUse const threads(mayBeSpread(m, n));
    HeldTraps const traps;
    MKL_INT rank = 0, info = 0;
    dgelsd(Size(m), Size(n), &one, a, Size(lda), b, Size(ldb), s, &rcond, &rank, work, &lwork, iwork, &info);
    return {info};
}

Outcome gglse(std::size_t m, std::size_t n, std::size_t p, double* a, std::size_t lda, double* b,
              std::size_t ldb, double* c, double* d, double* x, double* work, Integer lwork) {
    ThreadUse const threads(mayBeSpread(std::max(m, p), n));
    HeldTraps const traps;
    MKL_INT info = 0;
    dgglse(Size(m), Size(n), Size(p), a, Size(lda), b, Size(ldb), c, d, x, work, &lwork, &info);
    return {info};
}

} // namespace Tervane::Math::Detail::OneMKL
