#pragma once

#include <Math/Errors.h>
#include <System/Exceptions.h>

#include <optional>

namespace Tervane::Math::Detail {

/// How a routine ended: nothing, or why it failed. Each generation turns it into its own kind of error; the
/// legacy one does so in legacy/Boundary.h.
using Failure = std::optional<LinearAlgebraErrc>;

inline Failure failureUnless(bool condition, LinearAlgebraErrc failure) {
    return condition ? Failure() : Failure(failure);
}

/// The current generation: the exception that the guard of an exported function turns into the returned
/// error.
inline void raise(Failure const& failure) {
    if (failure)
        throw System::SystemError(*failure);
}

} // namespace Tervane::Math::Detail
