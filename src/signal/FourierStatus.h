#pragma once

#include <Math/Errors.h>

namespace Tervane::Math::Detail {

/// The error that a failing status of oneMKL's Fourier transforms becomes. `DataSizeTooLarge` comes from none
/// (compatibility C5).
constexpr FFTErrc fourierError(long long status) {
    switch (status) {
    case 1:
        return MemoryError;
    case 2:
        return InvalidConfiguration;
    case 3:
        return InconsistentConfiguration;
    case 4:
        return MultithreadedError;
    case 5:
        return DescriptorUnusable;
    case 6:
        return Unimplemented;
    case 7:
        return InternalError;
    case 8:
        return NumberOfThreadsError;
    case 9:
        return DimensionTooLarge;
    default:
        return UnknownError;
    }
}

} // namespace Tervane::Math::Detail
