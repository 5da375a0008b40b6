#include "legacy/Tables.h"

#include <Math/BasicObject.h>
#include <Math/Matrix.h>
#include <Math/ViewMatrix.h>
#include <System/ErrorCode.h>

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

namespace Tervane::Math::LegacyTest {

namespace {

class OwnView : public RowMajor<ViewMatrix> {
public:
    using RowMajor::RowMajor;
    MatrixLayout majorOrder() const override { return static_cast<MatrixLayout>(0); }
};

TEST(ViewMatrix, ImplementsNothingAndHoldsNothing) {
    static_assert(std::is_abstract_v<ViewMatrix>);
    static_assert(std::is_base_of_v<AbstractMatrix, ViewMatrix>);
    static_assert(!std::is_base_of_v<System::BasicObject<AbstractMatrix>, ViewMatrix>);
    static_assert(std::has_virtual_destructor_v<ViewMatrix>);
    EXPECT_EQ(sizeof(ViewMatrix), sizeof(void*));
}

TEST(ViewMatrix, ServesAClassThatSuppliesTheRest) {
    OwnView const view(2, 2, {1, 2, 3, 4});
    System::ErrorCode error;
    EXPECT_EQ(Matrix(2, 2, 2.0).elementwiseMultiply(view, error)[Index(1, 0)], 6.0);
    EXPECT_FALSE(error.hasError());
    EXPECT_NE(dynamic_cast<ViewMatrix const*>(static_cast<AbstractDataTable const*>(&view)), nullptr);
}

TEST(ViewMatrix, CopiesAndMovesWithoutState) {
    OwnView target(1, 1, {1});
    OwnView source(1, 1, {2});
    ViewMatrix& base = target;
    EXPECT_EQ(&(base = static_cast<ViewMatrix const&>(source)), &base);
    EXPECT_EQ(&(base = static_cast<ViewMatrix&&>(source)), &base);
    EXPECT_EQ(target[Index(0, 0)], 1.0);
    EXPECT_EQ(OwnView(std::move(source))[Index(0, 0)], 2.0);
}

} // namespace

} // namespace Tervane::Math::LegacyTest
