#include "foundation/UnrecognisedError.h"

#include <Math/Errors.h>
#include <System/Expected.h>
#include <System/Immortal.h>
#include <System/String.h>
#include <System/String2.h>

#include <array>
#include <cstddef>
#include <span>

namespace Tervane::Math {

namespace {

using System::String2;

using Text = char8_t const*;

// The text of code k is element k; a null one marks a code without a text of its own. Both generations of the
// linear-algebra categories read the first table.
constexpr std::array<Text, 10> linearAlgebraTexts = {
    u8"table is not a vector",
    u8"solution could not be computed",
    u8"failed to converge",
    u8"dimensions mismatch",
    u8"invalid parameter",
    u8"solution could not be computed",
    u8"solution could not be computed",
    nullptr,
    u8"matrix is not square",
    u8"matrix is singular",
};

constexpr std::array<Text, 11> fftTexts = {
    u8"Descriptor unusable for computation",
    u8"Invalid settings in one or more configuration parameters",
    u8"Inconsistent configuration or input parameters",
    u8"Length of a dimension exceeds maximum size for int32",
    u8"Memory error",
    u8"Data size of a transform exceeds maximum size for int32",
    u8"Internal library error",
    u8"Multithreaded error",
    u8"Number of threads error",
    u8"Unimplemented",
    u8"Unknown error",
};

constexpr std::array<Text, 2> emiTexts = {
    u8"Start frequency too small, value should be >= 9000 Hz",
    u8"Start frequency larger than stop frequency",
};

constexpr std::array<Text, 1> mathTexts = {
    u8"complex vector from data cannot have odd length",
};

Text textOf(std::span<Text const> texts, int code) {
    auto const index = static_cast<unsigned>(code); // a negative code is beyond every table
    return index < texts.size() ? texts[index] : nullptr;
}

/// A category of the current generation: a name and the table of its texts.
class TableCategory final : public System::ErrorCategory2 {
public:
    TableCategory(char const* name, std::span<Text const> texts) : _name(name), _texts(texts) {}

    String2 message(int code) const override {
        Text const text = textOf(_texts, code);
        return text != nullptr ? String2(text) : Detail::unrecognisedErrorText(System::toString(code));
    }

    char const* name() const override { return _name; }

private:
    char const* _name;
    std::span<Text const> _texts;
};

/// Messages may still be asked for while the process ends.
using ImmortalCategory = System::detail::Immortal<TableCategory const>;

} // namespace

System::ErrorCategory2 const& linear_algebra_error_category() {
    static ImmortalCategory const category("math-la", linearAlgebraTexts);
    return category.value;
}

System::ErrorCategory2 const& fft_error_category() {
    static ImmortalCategory const category("math-fft", fftTexts);
    return category.value;
}

System::ErrorCategory2 const& emi_error_category() {
    static ImmortalCategory const category("math-emi", emiTexts);
    return category.value;
}

System::ErrorCategory2 const& math_error_category() {
    static ImmortalCategory const category("math", mathTexts);
    return category.value;
}

LinearAlgebraErrorCategory::LinearAlgebraErrorCategory() = default;
LinearAlgebraErrorCategory::~LinearAlgebraErrorCategory() = default;

System::String LinearAlgebraErrorCategory::message(int code) const {
    Text const text = textOf(linearAlgebraTexts, code);
    return System::String(text != nullptr ? text : u8"unhandled");
}

System::String LinearAlgebraErrorCategory::name() const {
    return System::String(u8"math_la");
}

LinearAlgebraErrorCategory const& LinearAlgebraErrorCategory::get() {
    static System::detail::Immortal<LinearAlgebraErrorCategory const> const category;
    return category.value;
}

} // namespace Tervane::Math

namespace Tervane::System {

ErrorCode2 ErrorCodeEnumConstructor<Math::LinearAlgebraErrc>::operator()(Math::LinearAlgebraErrc e) const {
    return ErrorCode2(static_cast<int>(e), Math::linear_algebra_error_category());
}

ErrorCode2 ErrorCodeEnumConstructor<Math::FFTErrc>::operator()(Math::FFTErrc e) const {
    return ErrorCode2(static_cast<int>(e), Math::fft_error_category());
}

ErrorCode2 ErrorCodeEnumConstructor<Math::EMIErrc>::operator()(Math::EMIErrc e) const {
    return ErrorCode2(static_cast<int>(e), Math::emi_error_category());
}

ErrorCode2 ErrorCodeEnumConstructor<Math::MathErrc>::operator()(Math::MathErrc e) const {
    return ErrorCode2(static_cast<int>(e), Math::math_error_category());
}

ErrorCode ErrorBuilder<Math::LinearAlgebraErrorCode>::make(Math::LinearAlgebraErrorCode code) {
    return ErrorCode(static_cast<int>(code), Math::LinearAlgebraErrorCategory::get());
}

ErrorCode ErrorBuilder<Math::LinearAlgebraErrorCode>::make(Math::LinearAlgebraErrorCode code,
                                                           String&& /*text*/) {
    return make(code);
}

ErrorCode ErrorBuilder<Math::LinearAlgebraErrorCode>::make(Math::LinearAlgebraErrorCode code,
                                                           String const& /*text*/) {
    return make(code);
}

} // namespace Tervane::System
