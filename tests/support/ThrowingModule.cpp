// A module of its own, compiled with hidden visibility and loaded while the test runs: what it throws must be
// caught by type in the program and in the library.
#include "ThrowingModule.h"

#include <System/Exceptions.h>
#include <System/Expected.h>
#include <System/Object.h>

namespace {

using namespace Tervane::System;

/// Of two kinds, so that a cast from one to the other has to compare type information.
class ModuleObject final : public ObjectData, public ErrorCategory2 {
public:
    String2 message(int) const override { return u8"module"; }
    char const* name() const override { return "module"; }
};

} // namespace

void throwFromModule(Tervane::System::Testing::Thrown what) {
    using Tervane::System::Testing::Thrown;
    switch (what) {
    case Thrown::Errc:
        throw std::errc::timed_out;
    case Thrown::IoErrc:
        throw std::io_errc::stream;
    case Thrown::FutureErrc:
        throw std::future_errc::no_state;
    case Thrown::StandardSystemError:
        throw std::system_error(std::make_error_code(std::errc::timed_out));
    case Thrown::Exception2:
        throw Exception2("module");
    case Thrown::RuntimeError:
        throw RuntimeError("module");
    case Thrown::SystemError:
        throw SystemError(std::errc::timed_out);
    case Thrown::BadExpectedAccessVoid:
        throw bad_expected_access<void>();
    case Thrown::BadExpectedAccess:
        throw bad_expected_access<ErrorCode2>(std::errc::timed_out);
    case Thrown::ValueOfAnError:
        (void)Expected<int, ErrorCode2>(std::errc::timed_out).value();
        break;
    }
}

Tervane::System::ObjectData* objectOfModule() {
    return new ModuleObject;
}
