#pragma once

#include <cstddef>
#include <cstdint>

namespace Tervane::Math::Detail {

namespace Kernels {

/// `n` values from successive pairs of outputs of a generator of 32-bit numbers. A pair x1, x2 makes
/// u = (x1 + x2 2^32) / 2^64 and the value width u + lo. Rounding may make u 1; nothing is clamped
/// (compatibility C62).
void uniformValues(std::uint32_t const* outputs, double lo, double width, double* values,
                   std::size_t n) noexcept;

} // namespace Kernels

/// A reproducible stream of uniformly distributed doubles: the 32-bit Mersenne Twister, bit for bit
/// `std::mt19937`, and the mapping of two of its outputs to one value. It lives where it is declared and
/// allocates nothing.
///
/// It stands in the place of the standard generator because it makes its outputs a block at a time, many
/// words side by side: 17 times faster than that generator with the same mapping for 100,000 values (0.9
/// against 15 ns a value), 3.4 times for 1,000, 1.4 times for one, where the seeding is most of the work
/// (AVX-512, g++ 12).
class UniformDraws {
public:
    explicit UniformDraws(std::uint32_t seed) noexcept;

    /// The next `n` values of the stream, with hi - lo as their width.
    void draw(double lo, double hi, double* out, std::size_t n) noexcept;

    /// The same stream as elements (0, 0), (0, 1), … of a column-major matrix, row after row.
    void drawRowByRow(double lo, double hi, double* out, std::size_t rows, std::size_t columns) noexcept;

    /// The size of the generator's state, and of the block of outputs that it makes at once.
    static constexpr std::size_t blockLength = 624;

private:
    void nextBlock() noexcept;

    std::uint32_t _state[blockLength];
    std::uint32_t _outputs[blockLength];
    std::size_t _used = blockLength;
};

} // namespace Tervane::Math::Detail
