/// @file
/// A category and an enumeration of error codes such as a program that uses the library brings along.
#pragma once

#include <System/ErrorCode2.h>
#include <System/Expected.h>
#include <System/String2.h>

namespace Tervane::System::Testing {

enum class Fruit { Apple = 0, Pear = 7 };

class FruitCategory final : public ErrorCategory2 {
public:
    String2 message(int code) const override { return code == 7 ? u8"pear \u00e9" : u8"apple"; }
    char const* name() const override { return "fruit"; }
};

inline ErrorCategory2 const& fruit_category() {
    static FruitCategory const category;
    return category;
}

} // namespace Tervane::System::Testing

template<>
struct Tervane::System::ErrorCodeEnumConstructor<Tervane::System::Testing::Fruit> {
    ErrorCode2 operator()(Testing::Fruit fruit) const {
        return {static_cast<int>(fruit), Testing::fruit_category()};
    }
};
