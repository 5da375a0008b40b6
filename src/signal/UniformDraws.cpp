#include "signal/UniformDraws.h"

#include "foundation/Multiversion.h"

#include <algorithm>
#include <iterator>

namespace Tervane::Math::Detail {

namespace {

constexpr std::size_t length = UniformDraws::blockLength;
constexpr std::size_t shift = 397;

inline std::uint32_t twisted(std::uint32_t current, std::uint32_t next, std::uint32_t far) noexcept {
    std::uint32_t const y = (current & 0x80000000U) | (next & 0x7fffffffU);
    return far ^ (y >> 1) ^ ((0U - (y & 1U)) & 0x9908b0dfU);
}

// Each word is made of itself, the one after it and one 397 ahead, which in the second part is 227 back and
// new already. A vector of words is read before it is written, and 227 words are wider than any: compilers
// find that out and take many words at once, without being told that the iterations are independent, which
// they are not.
TVNMATH_MULTIVERSION void twist(std::uint32_t* state) noexcept {
    constexpr std::size_t back = length - shift;
    for (std::size_t i = 0; i < back; ++i)
        state[i] = twisted(state[i], state[i + 1], state[i + shift]);
    for (std::size_t i = back; i < length - 1; ++i)
        state[i] = twisted(state[i], state[i + 1], state[i - back]);
    state[length - 1] = twisted(state[length - 1], state[0], state[shift - 1]);
}

TVNMATH_MULTIVERSION void temper(std::uint32_t const* __restrict state,
                                 std::uint32_t* __restrict out) noexcept {
    for (std::size_t i = 0; i < length; ++i) {
        std::uint32_t y = state[i];
        y ^= y >> 11;
        y ^= (y << 7) & 0x9d2c5680U;
        y ^= (y << 15) & 0xefc60000U;
        out[i] = y ^ (y >> 18);
    }
}

TVNMATH_MULTIVERSION void toValues(std::uint32_t const* __restrict outputs, double lo, double width,
                                   double* __restrict values, std::size_t n) noexcept {
    for (std::size_t i = 0; i < n; ++i) {
        double const x1 = outputs[2 * i];
        double const x2 = outputs[2 * i + 1];
        double const u = (x1 + x2 * 4294967296.0) / 18446744073709551616.0;
        values[i] = width * u + lo;
    }
}

} // namespace

void Kernels::uniformValues(std::uint32_t const* outputs, double lo, double width, double* values,
                            std::size_t n) noexcept {
    toValues(outputs, lo, width, values, n);
}

UniformDraws::UniformDraws(std::uint32_t seed) noexcept {
    _state[0] = seed;
    for (std::uint32_t i = 1; i < length; ++i)
        _state[i] = 1812433253U * (_state[i - 1] ^ (_state[i - 1] >> 30)) + i;
}

void UniformDraws::draw(double lo, double hi, double* out, std::size_t n) noexcept {
    double const width = hi - lo;
    while (n != 0) {
        if (_used == length)
            nextBlock();
        std::size_t const count = std::min(n, (length - _used) / 2);
        Kernels::uniformValues(_outputs + _used, lo, width, out, count);
        _used += 2 * count;
        out += count;
        n -= count;
    }
}

void UniformDraws::drawRowByRow(double lo, double hi, double* out, std::size_t rows,
                                std::size_t columns) noexcept {
    double values[length / 2];
    std::size_t row = 0;
    std::size_t column = 0;
    for (std::size_t left = rows * columns; left != 0;) {
        std::size_t const count = std::min(std::size(values), left);
        draw(lo, hi, values, count);
        for (std::size_t i = 0; i < count; ++i) {
            out[row + column * rows] = values[i];
            if (++column == columns) {
                column = 0;
                ++row;
            }
        }
        left -= count;
    }
}

void UniformDraws::nextBlock() noexcept {
    twist(_state);
    temper(_state, _outputs);
    _used = 0;
}

} // namespace Tervane::Math::Detail
