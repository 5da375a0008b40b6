/// @file
/// What the module that the cross-module tests load offers.
#pragma once

#include <System/Object.h>

namespace Tervane::System::Testing {

/// What `throwFromModule` throws; the errors say that something timed out, the texts are "module".
enum class Thrown {
    Errc,
    IoErrc,
    FutureErrc,
    StandardSystemError,
    Exception2,
    RuntimeError,
    SystemError,
    BadExpectedAccessVoid,
    BadExpectedAccess,
    ValueOfAnError
};

} // namespace Tervane::System::Testing

extern "C" {
__attribute__((visibility("default"))) void throwFromModule(Tervane::System::Testing::Thrown what);
/// A new object that is an `ErrorCategory2` as well.
__attribute__((visibility("default"))) Tervane::System::ObjectData* objectOfModule();
}
