#pragma once

/// @file
/// `String2`, the current string type, and the two functions that make one with a result to test.

#include <System/Detail/String2.h>
#include <System/ErrorCode2.h>
