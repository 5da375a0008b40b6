#pragma once

/// @file
/// `guard`, the boundary at which exceptions become errors.
///
/// @code
/// using namespace Tervane::Math;
/// using namespace Tervane::System;
///
/// Expected<Vector2, ErrorCode2> solve(Matrix2 matrix, Vector2 rightHandSide) {
///     return guard<Vector2>([&] {
///         if (!matrix.isSquare()) {
///             throw SystemError(MatrixNotSquare);
///         }
///         LAPACK::gesv(matrix, rightHandSide).value();    // an error leaves by an exception, too
///         return rightHandSide;
///     });
/// }
/// @endcode

#include <System/ErrorCode2.h>
#include <System/Expected.h>
#include <System/Export.h>

#include <type_traits>
#include <utility>

namespace Tervane::System {

namespace detail {

/// The error that the exception being handled becomes; to be called from a `catch` block only.
///
/// In this order, so that an exception of several kinds counts as the first of them:
/// - a thrown `std::errc`, `std::io_errc` or `std::future_errc` is its own error code;
/// - a `std::system_error` gives its code through `ErrorCode2::fromStandard`;
/// - a `SystemError` and a `bad_expected_access<ErrorCode2>` give the error that they carry;
/// - anything else is `ErrorCode2(-1, system_error_category())` (compatibility C6).
TVNCORE_API ErrorCode2 currentExceptionError() noexcept;

} // namespace detail

/// Runs `body()` and returns what it returned, or the error that its exception becomes. No exception leaves.
///
/// @param body returns a `T`, or an `Expected<T, ErrorCode2>` that is passed on; for `T` = `void` it returns
///        nothing or an `Expected<void, ErrorCode2>`. The conversion of what it returned is guarded too.
template<class T, class Body>
Expected<T, ErrorCode2> guard(Body&& body) noexcept {
    try {
        if constexpr (std::is_void_v<decltype(std::forward<Body>(body)())>) {
            std::forward<Body>(body)();
            return Expected<T, ErrorCode2>();
        } else {
            return std::forward<Body>(body)();
        }
    } catch (...) {
        return detail::currentExceptionError();
    }
}

} // namespace Tervane::System
