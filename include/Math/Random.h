#pragma once

/// @file
/// Uniformly distributed random numbers.
///
/// @code
/// using namespace Tervane::Math;
/// Vector2 const jitter = Random::uniform(-1e-9, 1e-9, 1000);
/// Matrix2 const start = Random::uniform(0.0, 1.0, 10, 3);
/// @endcode

#include <Math/Export.h>
#include <Math/Matrix2.h>
#include <Math/Vector2.h>

#include <cstddef>

namespace Tervane::Math {

/// Independent draws from the uniform distribution.
///
/// Every call seeds a generator of its own, the 32-bit Mersenne Twister, with 32 bits of the system's entropy
/// and discards it at the end: calls share nothing, may run on any threads at once, and cannot be reproduced.
/// Not for cryptography.
///
/// A value is (hi - lo) u + lo, where two successive outputs x1 and x2 of the generator make u = (x1 + x2
/// 2^32) / 2^64. Rounding can make u 1, once in about 2^54 values, and the value then is hi: nothing clamps
/// it (compatibility C62). Nothing checks the order of `lo` and `hi` either; with lo above hi the values lie
/// in (hi, lo].
///
/// Literature: M. Matsumoto, T. Nishimura, "Mersenne Twister: a 623-dimensionally equidistributed uniform
/// pseudo-random number generator", ACM Transactions on Modeling and Computer Simulation 8 (1998).
class TVNMATH_API Random {
public:
    /// A column of `n` values.
    ///
    /// @throws std::length_error ("vector too long"), std::bad_alloc when the result cannot be allocated
    /// @throws std::exception what `std::random_device` throws when the system gives no entropy
    static Vector2 uniform(double const& lo, double const& hi, std::size_t n);

    /// A matrix of values, drawn row by row: the first ones go along row 0 (compatibility C63).
    ///
    /// @throws std::length_error ("vector too long"), std::bad_alloc when the result cannot be allocated
    /// @throws std::exception what `std::random_device` throws when the system gives no entropy
    static Matrix2 uniform(double const& lo, double const& hi, std::size_t rows, std::size_t columns);
};

} // namespace Tervane::Math
