/// @file
/// Storage for objects that live until the process ends.
#pragma once

#include <utility>

namespace Tervane::System::detail {

/// Holds an object that is never destroyed. As a static object of a function it is there from the function's
/// first call until the process ends, for destructors of other static objects too, and it needs no
/// allocation, so that it is there when memory is not.
template<class T>
union Immortal {
    template<class... Arguments>
    explicit Immortal(Arguments&&... arguments) : value(std::forward<Arguments>(arguments)...) {}
    ~Immortal() {}

    Immortal(Immortal const&) = delete;
    Immortal& operator=(Immortal const&) = delete;

    T value;
};

} // namespace Tervane::System::detail
