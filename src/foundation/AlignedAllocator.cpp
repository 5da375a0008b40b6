#include <Math/AlignedAllocator.h>

#include <mkl_service.h>

#include <cstdint>
#include <new>

namespace Tervane::Math {

namespace {

constexpr int alignmentInBytes = 64;

// Larger requests cannot be met, and oneMKL would wrap around when it adds its own bookkeeping to them.
constexpr std::size_t largestRequest = static_cast<std::size_t>(PTRDIFF_MAX) / sizeof(double);

} // namespace

double* AlignedAllocator::allocate(std::size_t n) {
    if (n == 0)
        return nullptr;
    void* const p = n <= largestRequest ? MKL_malloc(n * sizeof(double), alignmentInBytes) : nullptr;
    if (p == nullptr)
        throw std::bad_alloc();
    return static_cast<double*>(p);
}

void AlignedAllocator::deallocate(double* p, std::size_t /*n*/) noexcept {
    MKL_free(p);
}

} // namespace Tervane::Math
