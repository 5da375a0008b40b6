#pragma once

#include <System/Expected.h>
#include <System/Guard.h>
#include <System/String2.h>

#include <complex>
#include <cstddef>
#include <ios>
#include <ostream>
#include <sstream>
#include <string>

namespace Tervane::Math::Detail {

inline void write(std::ostream& stream, double element) {
    stream << element;
}

/// What the standard inserter of complex numbers writes. That one writes into a stream of its own first, and
/// what is lost there for want of memory nobody hears of.
inline void write(std::ostream& stream, std::complex<double> const& element) {
    stream << '(' << element.real() << ',' << element.imag() << ')';
}

/// "[ a, b, c ]": the elements by a stream's default formatting, which is part of what callers compare.
template<class Element>
System::Expected<System::String2, System::ErrorCode2> textForm(Element const* elements, std::size_t n) {
    return System::guard<System::String2>([=] {
        std::ostringstream stream;
        stream.exceptions(std::ios_base::badbit
                          | std::ios_base::failbit); // or a lack of memory cuts the text short
        stream << "[ ";
        for (std::size_t i = 0; i < n; ++i) {
            stream << (i == 0 ? "" : ", ");
            write(stream, elements[i]);
        }
        stream << " ]";
        std::string const text = stream.str();
        return System::utf8ToUtf8(text.data(), text.size());
    });
}

} // namespace Tervane::Math::Detail
