#pragma once

#include <cstddef>

namespace Tervane::Math::Detail {

/// Joins elements by an operation on two of them, in an order that depends on their number alone.
///
/// From 32 elements on they are dealt out to 32 running results, what is left of them in eights to 8, and the
/// rest is joined one at a time; the running results are joined in a tree. Written over arrays, because
/// compilers turn that into registers of whatever width there is: 32 cover the four cycles of latency at two
/// instructions a cycle, and 8 are little to set up for short ranges. All of them begin with `start`.
///
/// To be called from a multiversioned function, into which it is inlined.
template<class Operation>
[[gnu::always_inline]] inline double reduceInLanes(double const* values, std::size_t n, double start,
                                                   Operation operation) noexcept {
    constexpr std::size_t few = 8;
    constexpr std::size_t many = 4 * few;
    double result = start;
    std::size_t i = 0;
    if (n >= few) {
        double running[few];
        for (std::size_t lane = 0; lane < few; ++lane)
            running[lane] = start;
        if (n >= many) {
            double all[many];
            for (std::size_t lane = 0; lane < many; ++lane)
                all[lane] = start;
            for (; i + many <= n; i += many)
                for (std::size_t lane = 0; lane < many; ++lane)
                    all[lane] = operation(all[lane], values[i + lane]);
            for (std::size_t lane = 0; lane < few; ++lane)
                running[lane] = operation(operation(all[lane], all[lane + few]),
                                          operation(all[lane + 2 * few], all[lane + 3 * few]));
        }
        for (; i + few <= n; i += few)
            for (std::size_t lane = 0; lane < few; ++lane)
                running[lane] = operation(running[lane], values[i + lane]);
        for (std::size_t lane = 0; lane < few / 2; ++lane)
            running[lane] = operation(running[lane], running[lane + few / 2]);
        result = operation(operation(running[0], running[2]), operation(running[1], running[3]));
    }
    for (; i < n; ++i)
        result = operation(result, values[i]);
    return result;
}

} // namespace Tervane::Math::Detail
