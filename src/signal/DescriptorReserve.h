#pragma once

/// @file
/// Memory for a transform's descriptor when the heap has none.

#include <array>
#include <cstddef>

namespace Tervane::Math::Detail {

/// While it lives, the calling thread's small requests in oneMKL come from here when the heap refuses them.
///
/// oneMKL does not look at two of the four small blocks that make a descriptor and writes through a null
/// pointer. Given these it goes on to a request whose failure it does report, or to the end.
class DescriptorReserve {
public:
    DescriptorReserve() noexcept;
    ~DescriptorReserve();

    DescriptorReserve(DescriptorReserve const&) = delete;
    DescriptorReserve& operator=(DescriptorReserve const&) = delete;

    /// A block of at least n bytes, or null: when n is larger than a block or all are in use.
    void* take(std::size_t n) noexcept;

    /// Whether p is a block of this reserve.
    bool owns(void const* p) const noexcept;

    static constexpr std::size_t blockSize = 256;
    static constexpr std::size_t blocks = 16;

private:
    // Not given back one by one: what a transform takes when there is no memory is a few blocks.
    alignas(64) std::array<std::byte, blocks * blockSize> _memory;
    std::size_t _used = 0;
};

} // namespace Tervane::Math::Detail
