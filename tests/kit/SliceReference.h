#pragma once

/// @file
/// Which elements a slice selects, rule by rule, in 64-bit arithmetic that small numbers cannot overflow.

#include <algorithm>
#include <vector>

namespace Tervane::Math::TestKit {

/// The positions that (start, stop, step) selects of `n` elements.
inline std::vector<long> slicePositions(long start, long stop, long step, long n) {
    long first = start < 0 ? n + start : start;
    long end = stop < 0 ? n + stop : stop;
    if (first < 0 || first > n)
        first = step <= 0 ? n - 1 : n;
    if (end < 0 || end > n)
        end = stop <= 0 ? n - 1 : n;
    std::vector<long> positions;
    for (long k = 0; k < (end - first) / step; ++k)
        positions.push_back(first + step * k);
    return positions;
}

/// Runs `body(start, stop, step, n, positions)` for every slice of a grid around lengths up to `longest`, but
/// for those that select positions outside the vector, which is a caller's mistake.
/// @return how many slices that were
template<class Body>
std::size_t forEachSlice(long longest, Body const& body) {
    std::size_t count = 0;
    for (long n = 0; n <= longest; ++n)
        for (long start = -longest - 3; start <= longest + 3; ++start)
            for (long stop = -longest - 3; stop <= longest + 3; ++stop)
                for (long step = -longest - 2; step <= longest + 2; ++step) {
                    if (step == 0)
                        continue;
                    std::vector<long> const positions = slicePositions(start, stop, step, n);
                    if (std::any_of(positions.begin(), positions.end(),
                                    [n](long p) { return p < 0 || p >= n; }))
                        continue;
                    body(static_cast<int>(start), static_cast<int>(stop), static_cast<int>(step),
                         static_cast<std::size_t>(n), positions);
                    ++count;
                }
    return count;
}

} // namespace Tervane::Math::TestKit
