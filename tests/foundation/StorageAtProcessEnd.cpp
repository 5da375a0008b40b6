// Containers that are made before main and end after the library's own objects: their storage must come and
// go all the same. The exit status says whether it did.
#include <Math/Vector2.h>

#include <malloc.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <optional>

namespace {

using Tervane::Math::Vector2;

Vector2 madeBeforeMain(100, 1.5);

bool isRight(Vector2 const& v) {
    Vector2 const sum = v + v;
    return sum[v.length() - 1] == 3.0;
}

// Not destroyed with the program's other objects.
alignas(std::optional<Vector2>) unsigned char memory[sizeof(std::optional<Vector2>)];
std::optional<Vector2>& survivor() {
    return *reinterpret_cast<std::optional<Vector2>*>(memory);
}

bool lastWordWasHeard = false;
std::size_t bytesAtEndOfMain = 0;
constexpr std::size_t bytesKept = 16 * 500 * sizeof(double);

/// What the thread has kept goes back to the heap when the library ends.
bool isReturned(std::size_t bytes) {
#if defined(TVNMATH_STORAGE_IS_RECYCLED)
    return mallinfo2().uordblks + bytes < bytesAtEndOfMain;
#else
    return bytes != 0;
#endif
}

// Registered before any library was initialised, so called after the last of them has ended. What atexit()
// registers would be called when the program itself ends.
void endLate(int /*status*/, void* /*argument*/) {
    bool const stillRight = isReturned(bytesKept) && isRight(*survivor()) && isRight(Vector2(1000, 1.5));
    survivor().reset();
    _exit(stillRight && lastWordWasHeard ? 0 : 1);
}

void registerBeforeLibraries() {
    if (on_exit(endLate, nullptr) != 0)
        _exit(2);
}

[[gnu::section(".preinit_array"), gnu::used]] void (*const first)() = registerBeforeLibraries;

struct LastWord {
    ~LastWord() { lastWordWasHeard = isRight(madeBeforeMain); }
} lastWord;

} // namespace

int main() {
    new (memory) std::optional<Vector2>(Vector2(100, 1.5));
    std::array<Vector2, 16>().fill(Vector2(500, 1.5));
    bytesAtEndOfMain = mallinfo2().uordblks;
    // Without the call of endLate() the process ends with this.
    return isRight(madeBeforeMain) ? 3 : 4;
}
