#pragma once

#include <System/ErrorCode2.h>
#include <System/Expected.h>
#include <System/String2.h>

#include <utility>

namespace Tervane::Math::Detail {

/// "Unrecognised error (N)", or "Unrecognised error (?)" when the number cannot be rendered.
///
/// @param number the rendered code
inline System::String2 unrecognisedErrorText(System::Expected<System::String2, System::ErrorCode2>&& number) {
    return u8"Unrecognised error (" + (number ? *std::move(number) : System::String2(u8"?")) + u8")";
}

} // namespace Tervane::Math::Detail
