#include "Failure.h"

#include <fmt/format.h>

namespace Examples {

Tervane::System::String2 TextCategory::message(int code) const {
    auto const index = static_cast<std::size_t>(code);
    return code < 0 || index >= _texts.size() ? u8"unknown failure" : _texts[index];
}

std::string describe(Place const& place, ErrorCode2 const& error) {
    std::string text;
    if (!place.file.empty()) {
        text += place.file + ":";
        if (place.line != 0) {
            text += fmt::format("{}:", place.line);
        }
        if (place.column != 0) {
            text += fmt::format("{}:", place.column);
        }
        text += " ";
    }
    text += error.message().narrow();
    if (!place.detail.empty()) {
        text += fmt::format(" ({})", place.detail);
    }
    return text;
}

} // namespace Examples

Tervane::System::ErrorCode2 Tervane::System::ErrorCodeEnumConstructor<Examples::FileFailure>::operator()(
    Examples::FileFailure failure) const {
    // In the order of the enumerators.
    static Examples::TextCategory const category(
        "file", {
                    u8"file cannot be read",
                    u8"file holds no table",
                    u8"line is not well-formed CSV",
                    u8"column is missing",
                    u8"line ends before this column",
                    u8"line has more fields than the header, as a decimal comma makes it",
                    u8"field is not a finite number",
                    u8"file cannot be written",
                    u8"gnuplot did not draw the plots (is it installed? --no-plots does without)",
                });
    return ErrorCode2(static_cast<int>(failure), category);
}
