#include <Math/AlignedAllocator.h>
#include <Math/Detail/RecyclingAllocator.h>

#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <utility>

// The sanitizers must see every block come and go.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#    define TVNMATH_HEAP_IS_WATCHED
#elif defined(__has_feature)
#    if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#        define TVNMATH_HEAP_IS_WATCHED
#    endif
#endif
#if defined(TVNMATH_RECYCLE_STORAGE) && !defined(TVNMATH_HEAP_IS_WATCHED)
#    define TVNMATH_KEEPS_BLOCKS
#endif

namespace Tervane::Math::Detail {

namespace {

/// From here on a huge page's worth of page faults is a good part of writing the block.
constexpr std::size_t shortestOnHugePages = (std::size_t{4} << 20) / sizeof(double);

/// Asks for huge pages over the whole pages of a block. The advice stays with the addresses when the block is
/// gone, where it does no harm, and a system that cannot follow it changes nothing.
void adviseHugePages(double* p, std::size_t n) noexcept {
    auto const page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    auto const begin = (reinterpret_cast<std::uintptr_t>(p) + page - 1) & ~(page - 1);
    auto const end = reinterpret_cast<std::uintptr_t>(p + n) & ~(page - 1);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the first whole page of the block
    static_cast<void>(madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE));
}

double* straightFromOneMKL(std::size_t n) {
    double* const p = AlignedAllocator().allocate(n);
    if (n >= shortestOnHugePages)
        adviseHugePages(p, n);
    return p;
}

#if defined(TVNMATH_KEEPS_BLOCKS)

// Size classes, four in each doubling, of whole cache lines: 1, 2, 3, 4, 5, 6, 7, 8, 10, 12, 14, 16, 20, …
constexpr std::size_t elementsPerLine = 8;
constexpr std::size_t classCount = 32;

/// Whether blocks of this length are kept. None has the length 0.
constexpr bool isKept(std::size_t n) noexcept {
    return n - 1 < RecyclingAllocator::longestKept;
}

constexpr std::size_t classOf(std::size_t n) noexcept {
    std::size_t const last = (n - 1) / elementsPerLine;
    std::size_t const doublings = std::max<std::size_t>(std::bit_width(last), 3) - 3;
    return 4 * doublings + (last >> doublings);
}

constexpr std::size_t elementsOf(std::size_t sizeClass) noexcept {
    std::size_t const doublings = std::max<std::size_t>(sizeClass / 4, 1) - 1;
    return ((sizeClass - 4 * doublings + 1) << doublings) * elementsPerLine;
}

/// How many blocks of each class a thread keeps.
constexpr auto limits = [] {
    std::array<std::uint8_t, classCount> result{};
    for (std::size_t c = 0; c < classCount; ++c) {
        std::size_t const bytes = elementsOf(c) * sizeof(double);
        result[c] = bytes <= 4'096 ? 16 : bytes <= 8'192 ? 4 : bytes <= 16'384 ? 3 : 2;
    }
    return result;
}();

constexpr std::size_t mostBytesKept = [] {
    std::size_t bytes = 0;
    for (std::size_t c = 0; c < classCount; ++c)
        bytes += limits[c] * elementsOf(c) * sizeof(double);
    return bytes;
}();

static_assert(classOf(RecyclingAllocator::longestKept) == classCount - 1);
static_assert(elementsOf(classCount - 1) == RecyclingAllocator::longestKept);
static_assert(!isKept(RecyclingAllocator::longestKept + 1), "there is no class for it");
static_assert(mostBytesKept == std::size_t{868} * 1'024, "the header says so");

/// A kept block, which holds the link to the next one.
struct Block {
    Block* next;
};

/// What a thread keeps.
struct Store {
    std::array<Block*, classCount> blocks;
    std::array<std::uint8_t, classCount> room;
};

// Both have neither blocks nor room, so that nobody asks whether there is a store before looking into it.
constinit Store notYetOpened{};
constinit Store closed{};

// A pointer only, and in the memory that a thread has from its start: there may be no room for more when the
// library is loaded late, and a variable that is set up on first use ends the process when that fails.
[[gnu::tls_model("initial-exec")]] constinit thread_local Store* store = &notYetOpened;

// From the first time on that memory was too short for a block of its class, shorter ones may come back.
constinit std::atomic<bool> classesAreBroken = false;

/// Returns the calling thread's blocks to oneMKL.
void emptyStore() noexcept {
    for (std::size_t c = 0; c < classCount; ++c)
        while (store->blocks[c] != nullptr) {
            auto* const block = std::exchange(store->blocks[c], store->blocks[c]->next);
            ++store->room[c];
            AlignedAllocator().deallocate(reinterpret_cast<double*>(block), 0);
        }
}

/// From now on the calling thread's blocks go straight through.
void closeStore() noexcept {
    emptyStore();
    if (store != &notYetOpened && store != &closed)
        std::free(store);
    store = &closed;
}

/// Closes the stores of threads that end. A thread-local object's destructor would do so too, but the process
/// ends where it cannot be registered.
class ThreadEnds {
public:
    ThreadEnds() noexcept {
        _isOpen = pthread_key_create(&_key, [](void* /*store*/) { closeStore(); }) == 0;
    }

    /// When the library is unloaded or the process ends. Other threads may still be at work, so what they
    /// keep is left alone.
    ~ThreadEnds() {
        if (_isOpen.exchange(false))
            pthread_key_delete(_key);
        closeStore();
    }

    ThreadEnds(ThreadEnds const&) = delete;
    ThreadEnds& operator=(ThreadEnds const&) = delete;

    /// Whether the calling thread's end will be seen.
    bool includeThisThread() noexcept { return _isOpen && pthread_setspecific(_key, &store) == 0; }

private:
    std::atomic<bool> _isOpen = false;
    pthread_key_t _key{};
};

ThreadEnds threadEnds;

/// Gives the calling thread a store, unless something is missing for that.
void openStore() noexcept {
    auto* const memory = static_cast<Store*>(std::malloc(sizeof(Store)));
    if (memory != nullptr && threadEnds.includeThisThread())
        store = new (memory) Store{{}, limits};
    else
        std::free(memory);
}

/// A block that no thread has kept. Where memory runs out, what this thread keeps is returned first, and then
/// no more is asked for than is needed.
double* freshBlock(std::size_t n) {
    std::size_t const wanted = isKept(n) ? elementsOf(classOf(n)) : n;
    try {
        return straightFromOneMKL(wanted);
    } catch (std::bad_alloc const&) {
        emptyStore();
    }
    double* const p = straightFromOneMKL(n);
    if (n != wanted)
        classesAreBroken = true;
    return p;
}

#endif

} // namespace

#if defined(TVNMATH_KEEPS_BLOCKS)

double* RecyclingAllocator::allocate(std::size_t n) {
    if (isKept(n)) {
        std::size_t const c = classOf(n);
        if (Block* const block = store->blocks[c]; block != nullptr) {
            store->blocks[c] = block->next;
            ++store->room[c];
            return reinterpret_cast<double*>(block);
        }
    }
    return freshBlock(n);
}

void RecyclingAllocator::deallocate(double* p, std::size_t n) noexcept {
    if (isKept(n) && !classesAreBroken.load(std::memory_order_relaxed)) {
        if (store == &notYetOpened)
            openStore();
        std::size_t const c = classOf(n);
        if (store->room[c] != 0) {
            --store->room[c];
            store->blocks[c] = new (p) Block{store->blocks[c]};
            return;
        }
    }
    AlignedAllocator().deallocate(p, n);
}

void suspendRecycling() noexcept {
    closeStore();
}

void resumeRecycling() noexcept {
    store = &notYetOpened;
}

#else

double* RecyclingAllocator::allocate(std::size_t n) {
    return straightFromOneMKL(n);
}

void RecyclingAllocator::deallocate(double* p, std::size_t n) noexcept {
    AlignedAllocator().deallocate(p, n);
}

void suspendRecycling() noexcept {}

void resumeRecycling() noexcept {}

#endif

} // namespace Tervane::Math::Detail
