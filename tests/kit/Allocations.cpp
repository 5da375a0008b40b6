#include "kit/Allocations.h"

#include <Math/Detail/RecyclingAllocator.h>

#include <malloc.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <limits>
#include <utility>

#if defined(__SANITIZE_THREAD__)
#    define TVNMATH_THREADS_ARE_SANITIZED 1
#elif defined(__has_feature)
#    if __has_feature(thread_sanitizer)
#        define TVNMATH_THREADS_ARE_SANITIZED 1
#    elif __has_feature(address_sanitizer)
#        define TVNMATH_HEAP_IS_SANITIZED 1
#    endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(TVNMATH_THREADS_ARE_SANITIZED)
#    define TVNMATH_HEAP_IS_SANITIZED 1
#endif

namespace Tervane::Math::Detail {

// Not every program that the kit is part of has the library.
[[gnu::weak]] void suspendRecycling() noexcept;
[[gnu::weak]] void resumeRecycling() noexcept;

} // namespace Tervane::Math::Detail

namespace {

using Tervane::Math::TestKit::KeptStorage;

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

// constinit keeps the accesses free of initialisation guards, which would themselves allocate.
thread_local constinit bool isCounting = false;
thread_local constinit std::size_t allocationCount = 0;
thread_local constinit std::size_t allocatedBytes = 0;
thread_local constinit std::size_t largestAllocation = unlimited;
thread_local constinit int suspensions = 0;

void suspendKeptStorage(KeptStorage keptStorage) {
    if (keptStorage == KeptStorage::Suspended && suspensions++ == 0
        && Tervane::Math::Detail::suspendRecycling != nullptr)
        Tervane::Math::Detail::suspendRecycling();
}

void resumeKeptStorage(KeptStorage keptStorage) {
    if (keptStorage == KeptStorage::Suspended && --suspensions == 0
        && Tervane::Math::Detail::resumeRecycling != nullptr)
        Tervane::Math::Detail::resumeRecycling();
}

constinit std::atomic<std::size_t> firstFault = unlimited;
constinit std::atomic<std::size_t> lastFault = unlimited;
constinit std::atomic<std::size_t> faultyHeapCount = 0;
constinit std::size_t leastFaultyBytes = 0;

void note(std::size_t bytes) {
    if (isCounting) {
        ++allocationCount;
        allocatedBytes += bytes;
    }
}

} // namespace

#if defined(TVNMATH_HEAP_IS_SANITIZED)

extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onMalloc)(void const volatile*, std::size_t),
                                                         void (*onFree)(void const volatile*));
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();

namespace {

[[maybe_unused]] bool const hooksAreInstalled = [] {
    return __sanitizer_install_malloc_and_free_hooks(
               [](void const volatile*, std::size_t bytes) { note(bytes); }, [](void const volatile*) {})
           != 0;
}();

} // namespace

#    if defined(TVNMATH_THREADS_ARE_SANITIZED)

// The thread sanitizer does not tell its hooks of aligned blocks, which is what element storage is. So this
// stands before the sanitizer's function, counts and passes on.
extern "C" {

int __interceptor_posix_memalign(void** p, std::size_t alignment, std::size_t bytes);

__attribute__((visibility("default"))) int posix_memalign(void** p, std::size_t alignment,
                                                          std::size_t bytes) {
    note(bytes);
    return __interceptor_posix_memalign(p, alignment, bytes);
}

} // extern "C"

#    endif

#else

// The program's own heap functions stand before the C library's, for shared libraries too. They count and
// pass on.
extern "C" {

void* __libc_malloc(std::size_t bytes);
void* __libc_calloc(std::size_t n, std::size_t bytes);
void* __libc_realloc(void* p, std::size_t bytes);
void* __libc_memalign(std::size_t alignment, std::size_t bytes);

} // extern "C"

namespace {

bool mayAllocate(std::size_t bytes) {
    note(bytes);
    bool isFaulty = false;
    if (firstFault != unlimited && bytes >= leastFaultyBytes) {
        std::size_t const number = ++faultyHeapCount;
        isFaulty = number >= firstFault && number <= lastFault;
    }
    if (bytes <= largestAllocation && !isFaulty)
        return true;
    errno = ENOMEM;
    return false;
}

} // namespace

// Where everything else is hidden these must be seen, or shared libraries find the C library's instead.
#    pragma GCC visibility push(default)

extern "C" {

void* malloc(std::size_t bytes) {
    return mayAllocate(bytes) ? __libc_malloc(bytes) : nullptr;
}

void* calloc(std::size_t n, std::size_t bytes) {
    return mayAllocate(n * bytes) ? __libc_calloc(n, bytes) : nullptr;
}

void* realloc(void* p, std::size_t bytes) {
    return mayAllocate(bytes) ? __libc_realloc(p, bytes) : nullptr;
}

void* memalign(std::size_t alignment, std::size_t bytes) {
    return mayAllocate(bytes) ? __libc_memalign(alignment, bytes) : nullptr;
}

void* aligned_alloc(std::size_t alignment, std::size_t bytes) {
    return memalign(alignment, bytes);
}

int posix_memalign(void** p, std::size_t alignment, std::size_t bytes) {
    *p = memalign(alignment, bytes);
    return *p != nullptr ? 0 : ENOMEM;
}

} // extern "C"

#    pragma GCC visibility pop

#endif

namespace Tervane::Math::TestKit {

AllocationCounter::AllocationCounter(KeptStorage keptStorage) : _keptStorage(keptStorage) {
    suspendKeptStorage(_keptStorage);
    allocationCount = 0;
    allocatedBytes = 0;
    isCounting = true;
}

AllocationCounter::~AllocationCounter() {
    isCounting = false;
    resumeKeptStorage(_keptStorage);
}

std::size_t AllocationCounter::count() const {
    return allocationCount;
}

std::size_t AllocationCounter::bytes() const {
    return allocatedBytes;
}

FailingAllocations::FailingAllocations(std::size_t largestThatSucceeds, KeptStorage keptStorage)
    : _keptStorage(keptStorage) {
    suspendKeptStorage(_keptStorage);
    largestAllocation = largestThatSucceeds;
}

FailingAllocations::~FailingAllocations() {
    largestAllocation = unlimited;
    resumeKeptStorage(_keptStorage);
}

FaultyHeap::FaultyHeap(std::size_t n, Faults faults, std::size_t leastBytes) {
    leastFaultyBytes = leastBytes;
    faultyHeapCount = 0;
    lastFault = faults == Faults::One ? n : unlimited;
    firstFault = n;
}

FaultyHeap::~FaultyHeap() {
    firstFault = unlimited;
}

std::size_t FaultyHeap::count() const {
    return faultyHeapCount;
}

bool FaultyHeap::isSupported() {
    return FailingAllocations::areSupported();
}

bool FailingAllocations::areSupported() {
#if defined(TVNMATH_HEAP_IS_SANITIZED)
    return false;
#else
    // Whether the functions above are the ones that a program calls: valgrind takes their place.
    static bool const isOurs = [] {
        bool const wasCounting = std::exchange(isCounting, true);
        std::size_t const before = allocationCount;
        void* volatile const p = std::malloc(1);
        std::free(p);
        isCounting = wasCounting;
        return std::exchange(allocationCount, before) != before;
    }();
    return isOurs;
#endif
}

std::size_t heapInUse() {
#if defined(TVNMATH_HEAP_IS_SANITIZED)
    return __sanitizer_get_current_allocated_bytes();
#else
    struct mallinfo2 const heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
#endif
}

} // namespace Tervane::Math::TestKit
