#pragma once

/// @file
/// `Expected<T, ErrorCode2>`, the result of an operation that can fail.

#include <System/Detail/Expected.h>
#include <System/ErrorCode2.h>
