// The address sanitizer sees an access beside or after the elements of every container: a child process makes
// one and dies with the report.

#include <Math/AlignedAllocator.h>
#include <Math/ComplexVector2.h>
#include <Math/Matrix.h>
#include <Math/Matrix2.h>
#include <Math/Vector.h>
#include <Math/Vector2.h>
#include <Math/VectorView2.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <utility>

namespace Tervane::Math {

namespace {

class StorageOverrunDeathTest : public testing::Test {
protected:
    // The parallel runtime's threads do not survive a plain fork.
    StorageOverrunDeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

constexpr char const* overrun = "AddressSanitizer: heap-buffer-overflow";
constexpr char const* useAfterFree = "AddressSanitizer: heap-use-after-free";

// Read and written through a volatile, so that no compiler removes an access that it can see to be wrong.
void touch(double* p) {
    double volatile* const element = p;
    *element = *element + 1.0;
}

TEST_F(StorageOverrunDeathTest, SeesAnElementWithinTheSameCacheLine) {
    Vector2 v(3);
    EXPECT_DEATH(v[8] = 1, overrun);
    EXPECT_DEATH(v[3] = 1, overrun);
    touch(&v[2]);
}

TEST_F(StorageOverrunDeathTest, SeesTheElementBeforeTheFirstAndAfterTheLast) {
    for (std::size_t const n : {1u, 7u, 8u, 9u, 1000u}) {
        AlignedAllocator allocator;
        double* const p = allocator.allocate(n);
        EXPECT_DEATH(touch(p - 1), overrun) << n;
        EXPECT_DEATH(touch(p + n), overrun) << n;
        p[0] = 1.0;
        p[n - 1] = 1.0;
        allocator.deallocate(p, n);
    }
}

TEST_F(StorageOverrunDeathTest, SeesElementsAfterTheirRelease) {
    AlignedAllocator allocator;
    EXPECT_DEATH(
        {
            double* const p = allocator.allocate(5);
            allocator.deallocate(p, 5);
            touch(p);
        },
        useAfterFree);
    EXPECT_DEATH(
        {
            double* element = nullptr;
            {
                Vector2 v(5);
                element = v.data();
            }
            touch(element);
        },
        useAfterFree);
}

TEST_F(StorageOverrunDeathTest, SeesItInEveryContainer) {
    Matrix2 matrix(2, 3, 0.0);
    EXPECT_DEATH(touch(matrix.data() + 6), overrun);
    ComplexVector2 complex(3);
    EXPECT_DEATH(touch(complex.data() + 6), overrun);
    Vector vector(3);
    EXPECT_DEATH(touch(vector.data() + 3), overrun);
    Matrix legacyMatrix(2, 3, 0.0);
    EXPECT_DEATH(touch(legacyMatrix.data() + 6), overrun);
}

} // namespace

} // namespace Tervane::Math
