#pragma once

/// @file
/// The lengths and misalignments that every kernel is tested with.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace Tervane::Math::TestKit {

/// Lengths around the vector registers and the unrolling of loops.
inline std::vector<std::size_t> awkwardLengths() {
    return {0, 1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 100, 1000, 1023, 1025};
}

/// The same, and lengths around `limit`, where the code takes another path.
inline std::vector<std::size_t> awkwardLengthsAround(std::size_t limit) {
    std::vector<std::size_t> lengths = awkwardLengths();
    for (std::size_t const n : {limit / 2, limit - 1, limit, limit + 1, 8 * limit + 2})
        lengths.push_back(n);
    std::sort(lengths.begin(), lengths.end());
    lengths.erase(std::unique(lengths.begin(), lengths.end()), lengths.end());
    return lengths;
}

/// `n` doubles, `misalignment` doubles past a 64-byte boundary, between guards. Everything starts as a NaN
/// that no computation makes, so an element that was not written and a write beside the range both show.
class Poisoned {
public:
    explicit Poisoned(std::size_t n, std::size_t misalignment = 0)
        : _length(n), _memory(n + 3 * guard, poison()) {
        auto const address = reinterpret_cast<std::uintptr_t>(_memory.data());
        std::size_t const toBoundary = (64 - address % 64) % 64 / sizeof(double);
        _first = toBoundary + 8 + misalignment % 8;
    }

    double* data() { return _memory.data() + _first; }
    double const* data() const { return _memory.data() + _first; }
    std::size_t length() const { return _length; }
    std::span<double> elements() { return {data(), _length}; }

    /// Whether nothing but the elements was written.
    bool guardsAreIntact() const {
        auto const isPoison = [](double x) {
            double const reference = poison();
            return std::equal(reinterpret_cast<char const*>(&x), reinterpret_cast<char const*>(&x + 1),
                              reinterpret_cast<char const*>(&reference));
        };
        auto const begin = _memory.begin();
        auto const first = begin + static_cast<std::ptrdiff_t>(_first);
        auto const last = first + static_cast<std::ptrdiff_t>(_length);
        return std::all_of(begin, first, isPoison) && std::all_of(last, _memory.end(), isPoison);
    }

    static double poison() { return std::numeric_limits<double>::signaling_NaN(); }

private:
    static constexpr std::size_t guard = 24;

    std::size_t _length;
    std::vector<double> _memory;
    std::size_t _first;
};

} // namespace Tervane::Math::TestKit
