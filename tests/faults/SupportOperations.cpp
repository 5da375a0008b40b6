#include "faults/Operations.h"

#include <system_error>
#include <utility>

namespace Tervane::Math::Faults {

namespace {

constexpr char const* kind = "support";

using Result = System::Expected<Vector2, System::ErrorCode2>;

void addErrors(Table& table) {
    OPERATION(Throws, Kept, linear_algebra_error_category().message(3), );
    OPERATION(Throws, Kept, fft_error_category().message(4), );
    OPERATION(Throws, Kept, emi_error_category().message(0), );
    OPERATION(Throws, Kept, math_error_category().message(0), );
    OPERATION(Throws, Kept, LinearAlgebraErrorCategory::get().message(3), );
    OPERATION(Throws, Kept, LinearAlgebraErrorCategory::get().name(), );
    OPERATION(Throws, Kept, System::ErrorCode2(LinearAlgebraErrc::DimensionsMismatch), );
    OPERATION(Throws, Kept, System::ErrorCode2(std::errc::invalid_argument).message(), );
    OPERATION(Throws, Kept, System::system_error_category().message(2), );
    OPERATION(
        Throws, Kept,
        System::ErrorBuilder<LinearAlgebraErrorCode>::make(LinearAlgebraErrorCode::DimensionsMismatch).code()
            == 3, );
    OPERATION(Throws, Kept,
              std::string(System::SystemError(LinearAlgebraErrc::DimensionsMismatch).what()).empty(), );
}

void addStrings(Table& table) {
    // Longer than what a string keeps within itself.
    OPERATION(Throws, Kept,
              System::String2(u8"a text that is longer than what fits into the string itself"), );
    OPERATION(Throws, Kept,
              System::String(u8"a text that is longer than what fits into the string itself"), );
    OPERATION(Throws, Kept, std::move(s) + u8" and a second text that makes it longer",
              s = System::String2(u8"a text that is longer than what fits into the string itself"));
    OPERATION(Throws, Kept, u8"a first text that makes it longer and " + std::move(s),
              s = System::String2(u8"a text that is longer than what fits into the string itself"));
    OPERATION(ReturnsError, Kept, System::toString(1234567), );
    OPERATION(ReturnsError, Kept, System::utf8ToUtf8("a text that is longer than what fits into it", 44), );
}

void addResults(Table& table) {
    OPERATION(Throws, Kept, Result(r), r = Result(vector2(1)));
    OPERATION(Throws, Kept, Result(a), a = vector2(1));
    OPERATION(Throws, Kept, e = r, r = Result(vector2(1)), e = Result(Vector2()));
    OPERATION(Throws, Kept, e = r, r = Result(vector2(1)), e = Result(std::errc::invalid_argument));
    OPERATION(Throws, Kept, Vector2(r.value()), r = Result(vector2(1)));
    OPERATION(Throws, Used, std::move(r).value(), r = Result(vector2(1)));
}

} // namespace

void addSupportOperations(Table& table) {
    addErrors(table);
    addStrings(table);
    addResults(table);
}

} // namespace Tervane::Math::Faults
