#pragma once

/// @file
/// The whole support library: results, error codes of both generations, strings and the object base.
///
/// @code
/// #include <System/System.h>
/// using namespace Tervane::System;
///
/// Expected<String2, ErrorCode2> text = toString(42);
/// if (!text) {
///     return text.error();
/// }
/// @endcode

#include <System/ErrorCode.h>
#include <System/ErrorCode2.h>
#include <System/Exceptions.h>
#include <System/Expected.h>
#include <System/Export.h>
#include <System/Guard.h>
#include <System/Object.h>
#include <System/String.h>
#include <System/String2.h>
