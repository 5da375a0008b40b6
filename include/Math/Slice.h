#pragma once

/// @file
/// A start/stop/step selection over a vector.
///
/// @code
/// using namespace Tervane::Math;
/// Vector2 const vector = arange(10);
/// Vector2 const everyOther = vector[makeSlice(0, 10, 2)];    // elements 0, 2, 4, 6, 8
/// Vector2 const lastThree = vector[makeSlice(-3, 10, 1)];    // elements 7, 8, 9
/// @endcode

namespace Tervane::Math {

class Slice;

/// The one way to make a slice.
///
/// @param start first position; a negative one counts from the end
/// @param stop position to stop before; a negative one counts from the end
/// @param step distance between selected positions; negative to walk backward, never 0: resolving such a
///        slice divides by it, and nothing checks this
constexpr Slice makeSlice(int start, int stop, int step) noexcept;

/// The positions start, start + step, start + 2 step, … before stop, resolved against a vector when it is
/// applied to one.
///
/// With n elements, a negative start or stop has n added. A start beyond the vector (or still negative)
/// becomes n, or n - 1 when the step is not positive. A stop beyond it becomes n, or n - 1 when the stop
/// given to makeSlice() was not positive. (stop - start) / step elements are selected, truncated toward zero
/// and at least none: a last partial stride is dropped, so (0, 10, 3) selects 0, 3 and 6 of ten
/// (compatibility C15). The two clamps differ (compatibility C16). All of it is 32-bit arithmetic
/// (compatibility C18).
class Slice {
public:
    /// @name Fields
    /// @{

    /// As given to makeSlice().
    constexpr int start() const noexcept { return _start; }
    constexpr int stop() const noexcept { return _stop; }
    constexpr int step() const noexcept { return _step; }
    /// @}

private:
    friend constexpr Slice makeSlice(int start, int stop, int step) noexcept;

    constexpr Slice(int start, int stop, int step) noexcept : _start(start), _stop(stop), _step(step) {}

    int _start;
    int _stop;
    int _step;
};

constexpr Slice makeSlice(int start, int stop, int step) noexcept {
    return Slice(start, stop, step);
}

} // namespace Tervane::Math
