#pragma once

#include "foundation/Failure.h"

#include <Math/Errors.h>
#include <System/ErrorCode.h>

#include <exception>
#include <optional>
#include <utility>

namespace Tervane::Math::Detail {

/// What becomes of an exception of the standard library at the boundary.
enum class StandardException {
    Unknown,   ///< the error is unknown, as after any other exception
    Described, ///< the error bears the exception's text
};

/// The boundary of the legacy generation: runs the body of an operation and stores in `error` how it failed.
/// Success leaves `error` as it is. Nothing comes out of it: a failed allocation, or what an accessor of the
/// caller's own table throws, is reported too, a LinearAlgebraErrorCode as itself.
///
/// @param body returns a Failure
template<StandardException standard = StandardException::Unknown, class Body>
void reportFailure(System::ErrorCode& error, Body const& body) noexcept {
    auto const assign = [&error](LinearAlgebraErrorCode code) {
        error.assign(System::ErrorBuilder<LinearAlgebraErrorCode>::make(code));
    };
    try {
        if (Failure const failure = body())
            assign(static_cast<LinearAlgebraErrorCode>(*failure));
    } catch (LinearAlgebraErrorCode code) {
        assign(code);
    } catch (std::exception const& exception) {
        if constexpr (standard == StandardException::Described)
            error.assign(exception);
        else
            error.assignUnknown();
    } catch (...) {
        error.assignUnknown();
    }
}

/// The same for an operation that makes its result. After an exception, and when the body ended without one,
/// the result is empty. An exception leaves only when there is no memory for the empty one either, and
/// `error` is set before.
///
/// @param body puts the result into the optional that it is given, and returns a Failure
template<class Result, StandardException standard = StandardException::Unknown, class Body>
Result reportedResult(System::ErrorCode& error, Body const& body) {
    std::optional<Result> result;
    reportFailure<standard>(error, [&] {
        std::optional<Result> made;
        Failure const failure = body(made);
        result = std::move(made);
        return failure;
    });
    return result ? *std::move(result) : Result();
}

} // namespace Tervane::Math::Detail
