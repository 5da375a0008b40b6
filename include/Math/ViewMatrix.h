#pragma once

/// @file
/// The declared, never implemented view of a matrix.

#include <Math/AbstractMatrix.h>
#include <Math/Export.h>

namespace Tervane::Math {

/// A matrix that looks at elements of someone else. It implements none of the operations that it inherits, so
/// it is abstract (compatibility C79): a class that derives from it has everything to supply. It has no
/// state.
class TVNMATH_API ViewMatrix : public AbstractMatrix {
public:
    ViewMatrix() noexcept = default;
    /// There is no state to copy or move.
    ViewMatrix(ViewMatrix const&) noexcept = default;
    /// There is no state to copy or move.
    ViewMatrix(ViewMatrix&&) noexcept = default;
    /// There is no state to assign.
    ViewMatrix& operator=(ViewMatrix const&) noexcept = default;
    /// There is no state to assign.
    ViewMatrix& operator=(ViewMatrix&&) noexcept = default;
    ~ViewMatrix() override;
};

} // namespace Tervane::Math
