#pragma once

/// @file
/// The allocator behind every real-valued container.

#include <Math/Export.h>

#include <cstddef>
#include <type_traits>

namespace Tervane::Math {

/// Allocates doubles on 64-byte boundaries: a cache line, and the widest vector register that the loops and
/// oneMKL use. The memory is oneMKL's own and is taken and released inside this library, so the alignment
/// does not depend on how a caller was compiled.
///
/// Stateless: all instances are equal and interchangeable. Safe from any thread.
class TVNMATH_API AlignedAllocator {
public:
    /// What is allocated.
    using value_type = double;
    /// All instances are equal.
    using is_always_equal = std::true_type;
    /// So a container's storage moves with it.
    using propagate_on_container_move_assignment = std::true_type;

    /// The standard containers ask for an allocator of the type that they have; there is none for another.
    template<class U>
    requires std::is_same_v<U, double>
    struct rebind {
        /// This allocator itself.
        using other = AlignedAllocator;
    };

    /// Uninitialised storage for `n` doubles; null for none.
    ///
    /// @throws std::bad_alloc when the memory cannot be had
    [[nodiscard]] double* allocate(std::size_t n);

    /// Releases what allocate() returned; the count is ignored and null is accepted.
    void deallocate(double* p, std::size_t n) noexcept;

    friend constexpr bool operator==(AlignedAllocator const&, AlignedAllocator const&) noexcept {
        return true;
    }
};

} // namespace Tervane::Math
