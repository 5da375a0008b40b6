#pragma once

/// @file
/// Requests for more elements than a container may hold.

#include <stdexcept>
#include <string>

namespace Tervane::Math::TestKit {

/// The text of the length error that `request()` throws, "no length error" when it throws none.
template<class Request>
std::string lengthErrorOf(Request const& request) {
    try {
        request();
    } catch (std::length_error const& error) {
        return error.what();
    }
    return "no length error";
}

} // namespace Tervane::Math::TestKit
