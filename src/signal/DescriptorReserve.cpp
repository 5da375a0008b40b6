#include "signal/DescriptorReserve.h"

#include <i_malloc.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>

namespace Tervane::Math::Detail {

namespace {

thread_local constinit DescriptorReserve* reserve = nullptr;

void* takeFromReserve(std::size_t n) noexcept {
    return reserve != nullptr ? reserve->take(n) : nullptr;
}

bool isReserved(void const* p) noexcept {
    return reserve != nullptr && reserve->owns(p);
}

void* allocateOrReserve(std::size_t n) noexcept {
    void* const p = std::malloc(n);
    return p != nullptr ? p : takeFromReserve(n);
}

void* allocateZeros(std::size_t count, std::size_t size) noexcept {
    void* p = std::calloc(count, size);
    if (p == nullptr && size != 0 && count <= std::numeric_limits<std::size_t>::max() / size) {
        p = takeFromReserve(count * size);
        if (p != nullptr)
            std::memset(p, 0, count * size);
    }
    return p;
}

void* reallocate(void* p, std::size_t n) noexcept {
    if (!isReserved(p))
        return std::realloc(p, n);
    void* const moved = allocateOrReserve(n);
    if (moved != nullptr)
        std::memcpy(moved, p, std::min(n, DescriptorReserve::blockSize));
    return moved;
}

void releaseUnlessReserved(void* p) noexcept {
    if (!isReserved(p))
        std::free(p);
}

} // namespace

DescriptorReserve::DescriptorReserve() noexcept {
    reserve = this;
}

DescriptorReserve::~DescriptorReserve() {
    reserve = nullptr;
}

void* DescriptorReserve::take(std::size_t n) noexcept {
    if (n > blockSize || _used == blocks)
        return nullptr;
    return _memory.data() + blockSize * _used++;
}

bool DescriptorReserve::owns(void const* p) const noexcept {
    std::less<> const before;
    return !before(p, _memory.data()) && before(p, _memory.data() + _memory.size());
}

} // namespace Tervane::Math::Detail

// Where oneMKL gets its memory: its own variables, which these are linked in the place of, so that they hold
// from the first request on.
extern "C" {

i_malloc_t i_malloc = Tervane::Math::Detail::allocateOrReserve;
i_calloc_t i_calloc = Tervane::Math::Detail::allocateZeros;
i_realloc_t i_realloc = Tervane::Math::Detail::reallocate;
i_free_t i_free = Tervane::Math::Detail::releaseUnlessReserved;

} // extern "C"
