// libFuzzer's entry into the target that TVNMATH_FUZZ_TARGET names.

#include "fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    Tervane::Math::Fuzz::Input input(bytes, size);
    Tervane::Math::Fuzz::TVNMATH_FUZZ_TARGET(input);
    return 0;
}
