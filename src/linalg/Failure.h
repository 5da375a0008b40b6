#pragma once

#include <Math/Errors.h>
#include <System/ErrorCode.h>
#include <System/Exceptions.h>

#include <optional>

namespace Tervane::Math::Detail {

/// How a routine on plain memory ended: nothing, or why it failed. Each generation turns it into its own kind
/// of error.
using Failure = std::optional<LinearAlgebraErrc>;

/// The current generation: the exception that the guard of an exported function turns into the returned
/// error.
inline void raise(Failure const& failure) {
    if (failure)
        throw System::SystemError(*failure);
}

/// The legacy generation: the same value in the legacy category. Success leaves `error` as it is.
inline void report(Failure const& failure, System::ErrorCode& error) {
    if (failure)
        error.assign(System::ErrorBuilder<LinearAlgebraErrorCode>::make(
            static_cast<LinearAlgebraErrorCode>(*failure)));
}

} // namespace Tervane::Math::Detail
