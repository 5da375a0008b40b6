#include <Math/AlignedAllocator.h>

#include <mkl_service.h>

#include <cstdint>
#include <cstdlib>
#include <new>

namespace Tervane::Math {

namespace {

constexpr int alignmentInBytes = 64;

// Larger requests cannot be met, and oneMKL would wrap around when it adds its own bookkeeping to them.
constexpr std::size_t largestRequest = static_cast<std::size_t>(PTRDIFF_MAX) / sizeof(double);

// oneMKL rounds every block up and reuses what is given back. Under the sanitizers the blocks come from their
// own heap instead, which sees an access one element past the end, one after the release, and who owns what.
#if defined(TVNMATH_SANITIZED)

void* takeBlock(std::size_t bytes) {
    void* p = nullptr;
    return posix_memalign(&p, alignmentInBytes, bytes) == 0 ? p : nullptr;
}

void giveBack(void* p) {
    std::free(p);
}

#else

void* takeBlock(std::size_t bytes) {
    return MKL_malloc(bytes, alignmentInBytes);
}

void giveBack(void* p) {
    MKL_free(p);
}

#endif

} // namespace

double* AlignedAllocator::allocate(std::size_t n) {
    if (n == 0)
        return nullptr;
    void* const p = n <= largestRequest ? takeBlock(n * sizeof(double)) : nullptr;
    if (p == nullptr)
        throw std::bad_alloc();
    return static_cast<double*>(p);
}

void AlignedAllocator::deallocate(double* p, std::size_t /*n*/) noexcept {
    giveBack(p);
}

} // namespace Tervane::Math
