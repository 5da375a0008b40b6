#pragma once

#include <System/Expected.h>
#include <System/Guard.h>
#include <System/String2.h>

#include <cstddef>
#include <sstream>
#include <string>

namespace Tervane::Math::Detail {

/// "[ a, b, c ]": the elements by a stream's default formatting, which is part of what callers compare.
template<class Element>
System::Expected<System::String2, System::ErrorCode2> textForm(Element const* elements, std::size_t n) {
    return System::guard<System::String2>([=] {
        std::ostringstream stream;
        stream << "[ ";
        for (std::size_t i = 0; i < n; ++i)
            stream << (i == 0 ? "" : ", ") << elements[i];
        stream << " ]";
        std::string const text = stream.str();
        return System::utf8ToUtf8(text.data(), text.size());
    });
}

} // namespace Tervane::Math::Detail
