#pragma once

#include <cstddef>

namespace Tervane::Math::Detail {

/// A vector register of so many doubles, and the same many in memory, wherever they lie.
template<std::size_t width>
struct RegisterOf;

template<>
struct RegisterOf<2> {
    using Type __attribute__((vector_size(16))) = double;
    using InMemory __attribute__((vector_size(16), aligned(8), may_alias)) = double;
};

template<>
struct RegisterOf<4> {
    using Type __attribute__((vector_size(32))) = double;
    using InMemory __attribute__((vector_size(32), aligned(8), may_alias)) = double;
};

template<>
struct RegisterOf<8> {
    using Type __attribute__((vector_size(64))) = double;
    using InMemory __attribute__((vector_size(64), aligned(8), may_alias)) = double;
};

/// The doubles of a register joined in a tree, the lower half with the upper one first.
template<std::size_t width, class Operation>
[[gnu::always_inline]] inline double joinedHalves(typename RegisterOf<width>::Type const& x,
                                                  Operation operation) noexcept {
    if constexpr (width == 2) {
        double joined = x[0];
        double const upper = x[1];
        operation(joined, upper);
        return joined;
    } else {
        using Half = typename RegisterOf<width / 2>::Type;
        Half joined, upper;
        if constexpr (width == 8) {
            joined = __builtin_shufflevector(x, x, 0, 1, 2, 3);
            upper = __builtin_shufflevector(x, x, 4, 5, 6, 7);
        } else {
            joined = __builtin_shufflevector(x, x, 0, 1);
            upper = __builtin_shufflevector(x, x, 2, 3);
        }
        operation(joined, upper);
        return joinedHalves<width / 2>(joined, operation);
    }
}

/// Joins elements by an operation on two of them, in an order that depends on their number alone.
///
/// From 32 elements on they are dealt out to 32 running results, what is left of them in eights to 8, and the
/// rest is joined one at a time; the running results are joined in a tree. 32 cover the four cycles of
/// latency at two instructions a cycle, and 8 are little to set up for short ranges. All of them begin with
/// `start`. Written over registers, because compilers take arrays of eight apart again: 16 elements took
/// twice as long.
///
/// To be called from a function compiled for an instruction set with registers of that width, into which it
/// is inlined.
///
/// @tparam width the doubles in a register; the result does not depend on it
/// @param operation called with the result so far, which it changes, and what is joined to it, both doubles
///        or both registers
template<std::size_t width, class Operation>
[[gnu::always_inline]] inline double reduceInLanes(double const* values, std::size_t n, double start,
                                                   Operation operation) noexcept {
    using Register = typename RegisterOf<width>::Type;
    using InMemory = typename RegisterOf<width>::InMemory;
    constexpr std::size_t few = 8;
    constexpr std::size_t many = 4 * few;
    constexpr std::size_t registers = few / width;
    auto const join = [values, operation](Register& running, std::size_t at) {
        Register const elements = *reinterpret_cast<InMemory const*>(values + at);
        operation(running, elements);
    };
    double result = start;
    std::size_t i = 0;
    if (n >= few) {
        Register running[registers];
        for (Register& r : running)
            for (std::size_t lane = 0; lane < width; ++lane)
                r[lane] = start;
        if (n >= many) {
            Register all[4 * registers];
            for (std::size_t r = 0; r < 4 * registers; ++r)
                all[r] = running[r % registers];
            for (; i + many <= n; i += many)
                for (std::size_t r = 0; r < 4 * registers; ++r)
                    join(all[r], i + r * width);
            for (std::size_t r = 0; r < registers; ++r) {
                operation(all[r], all[r + registers]);
                operation(all[r + 2 * registers], all[r + 3 * registers]);
                operation(all[r], all[r + 2 * registers]);
                running[r] = all[r];
            }
        }
        for (; i + few <= n; i += few)
            for (std::size_t r = 0; r < registers; ++r)
                join(running[r], i + r * width);
        for (std::size_t half = registers / 2; half > 0; half /= 2)
            for (std::size_t r = 0; r < half; ++r)
                operation(running[r], running[r + half]);
        result = joinedHalves<width>(running[0], operation);
    }
    for (; i < n; ++i)
        operation(result, values[i]);
    return result;
}

} // namespace Tervane::Math::Detail
