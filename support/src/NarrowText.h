#pragma once

/// @file
/// Text that comes from outside as narrow characters of an unknown encoding.

#include <System/String2.h>

#include <string_view>

namespace Tervane::System::detail {

/// The same text if it is UTF-8; otherwise with `?` in place of every byte that is not ASCII.
String2 textOf(std::string_view narrow);

} // namespace Tervane::System::detail
