#pragma once

/// @file
/// The exceptions in which failures travel inside the libraries, and the one that `Expected::value()`
/// throws.

#include <System/Detail/Exceptions.h>
#include <System/ErrorCode2.h>
