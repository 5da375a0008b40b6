#pragma once

/// @file
/// How a step of an example fails: with an error value of the library's kind, and a place to go with it.
///
/// A program has errors of its own beside the library's. It makes them part of the same system by an
/// enumeration, a category that gives each enumerator a text, and a specialisation of
/// `ErrorCodeEnumConstructor`; from then on an enumerator can be returned wherever an `Expected` is. Here are
/// the failures that every program with input and output files knows; `converter_emi/Failure.h` adds more.

#include <System/System.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace Examples {

using Tervane::System::ErrorCode2;
using Tervane::System::Expected;

/// What can be wrong with a file that is read or written.
enum class FileFailure : std::int32_t {
    FileNotReadable,
    FileEmpty,
    LineMalformed,
    ColumnMissing,
    FieldMissing,
    FieldSurplus,
    FieldNotNumber,
    FileNotWritable,
    PlotNotDrawn,
};

/// The place of a failure in a file, as far as it is known. A step that fails fills it in.
struct Place {
    std::string file;
    std::size_t line = 0;   ///< counted from 1; 0 when the failure belongs to no line
    std::size_t column = 0; ///< number of the field in its line, counted from 1; 0 when it belongs to none
    std::string detail;     ///< what stands there, or by how much it misses
};

/// One line for a person: "file:line:column: message (detail)", with those parts that are known.
std::string describe(Place const& place, ErrorCode2 const& error);

/// A category whose codes count its texts from 0, as the enumerators of a plain enumeration do.
class TextCategory final : public Tervane::System::ErrorCategory2 {
public:
    TextCategory(char const* name, std::initializer_list<char8_t const*> texts)
        : _name(name), _texts(texts) {}

    Tervane::System::String2 message(int code) const override;
    char const* name() const override { return _name; }

private:
    char const* _name;
    std::vector<char8_t const*> _texts;
};

} // namespace Examples

template<>
struct Tervane::System::ErrorCodeEnumConstructor<Examples::FileFailure> {
    Tervane::System::ErrorCode2 operator()(Examples::FileFailure failure) const;
};
