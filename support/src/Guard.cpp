#include <System/Exceptions.h>
#include <System/Guard.h>

namespace Tervane::System::detail {

ErrorCode2 currentExceptionError() noexcept {
    // The order of the clauses is part of what callers see: an exception that fits several counts as the
    // first.
    try {
        throw;
    } catch (std::errc enumerator) {
        return enumerator;
    } catch (std::io_errc enumerator) {
        return enumerator;
    } catch (std::future_errc enumerator) {
        return enumerator;
    } catch (std::system_error const& exception) {
        return ErrorCode2::fromStandard(exception.code());
    } catch (SystemError const& exception) {
        return exception.code();
    } catch (bad_expected_access<ErrorCode2> const& exception) {
        return exception.error();
    } catch (...) {
        return {-1, system_error_category()};
    }
}

} // namespace Tervane::System::detail
