// A caller's program that calls nothing of the support library itself, so that a thrifty linker drops it.

#include <Math/Math.h>

int main() {
    using namespace Tervane::Math;
    return sum(zeros(4) + 0.5) == 2.0 ? 0 : 1;
}
