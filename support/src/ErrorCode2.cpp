#include "NarrowText.h"

#include <System/ErrorCode2.h>
#include <System/Immortal.h>
#include <System/String2.h>

namespace Tervane::System {

namespace {

/// One of the standard library's categories under its counterpart's name.
class StandardCategory final : public ErrorCategory2 {
public:
    StandardCategory(char const* name, std::error_category const& standard) noexcept
        : _name(name), _standard(standard) {}

    String2 message(int code) const override { return detail::textOf(_standard.message(code)); }
    char const* name() const override { return _name; }

private:
    char const* _name;
    std::error_category const& _standard;
};

/// Codes may still be used while the process ends.
using ImmortalCategory = detail::Immortal<StandardCategory const>;

} // namespace

ErrorCategory2::ErrorCategory2() noexcept = default;
ErrorCategory2::~ErrorCategory2() = default;

ErrorCode2 ErrorCode2::fromStandard(std::error_code const& code) noexcept {
    std::error_category const& category = code.category();
    if (category == std::generic_category())
        return {code.value(), generic_error_category()};
    if (category == std::system_category())
        return {code.value(), system_error_category()};
    if (category == std::future_category())
        return {code.value(), future_error_category()};
    if (category == std::iostream_category())
        return {code.value(), iostream_error_category()};
    return {-1, system_error_category()};
}

String2 ErrorCode2::message() const {
    return category().message(_code);
}

ErrorCategory2 const& generic_error_category() noexcept {
    static ImmortalCategory const instance("generic", std::generic_category());
    return instance.value;
}

ErrorCategory2 const& system_error_category() noexcept {
    static ImmortalCategory const instance("system", std::system_category());
    return instance.value;
}

ErrorCategory2 const& future_error_category() noexcept {
    static ImmortalCategory const instance("future", std::future_category());
    return instance.value;
}

ErrorCategory2 const& iostream_error_category() noexcept {
    static ImmortalCategory const instance("iostream", std::iostream_category());
    return instance.value;
}

ErrorCode2 ErrorCodeEnumConstructor<std::errc>::operator()(std::errc enumerator) const noexcept {
    return {static_cast<int>(enumerator), generic_error_category()};
}

ErrorCode2 ErrorCodeEnumConstructor<std::io_errc>::operator()(std::io_errc enumerator) const noexcept {
    return {static_cast<int>(enumerator), iostream_error_category()};
}

ErrorCode2
ErrorCodeEnumConstructor<std::future_errc>::operator()(std::future_errc enumerator) const noexcept {
    return {static_cast<int>(enumerator), future_error_category()};
}

} // namespace Tervane::System
