#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/Policies.h"
#include "kit/SpecialValues.h"
#include "legacy/Tables.h"

#include <Math/Errors.h>
#include <Math/Matrix.h>
#include <Math/Vector.h>
#include <System/ErrorCode.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace Tervane::Math::LegacyTest {

namespace {

using System::ErrorCode;
using TestKit::sameBits;

bool isDimensionsMismatch(ErrorCode const& error) {
    return error.hasError() && error.code() == 3 && error.category() == &LinearAlgebraErrorCategory::get()
           && !error.isUnknown();
}

class ThrowingMatrix : public OwnMatrix {
public:
    enum class What { StandardException, Number, LinearAlgebraCode };

    explicit ThrowingMatrix(What what) : OwnMatrix(1, 1, {1}), _what(what) {}

    using OwnMatrix::operator[];
    double const& operator[](Index const&) const override {
        if (_what == What::StandardException)
            throw std::runtime_error("no element");
        if (_what == What::Number)
            throw 7;
        throw LinearAlgebraErrorCode::MatrixSingular;
    }

private:
    What _what;
};

TEST(AbstractMatrix, CopiesAndMovesWithoutState) {
    static_assert(std::is_abstract_v<AbstractMatrix>);
    OwnMatrix target(1, 1, {1});
    OwnMatrix source(1, 1, {2});
    AbstractMatrix& base = target;
    EXPECT_EQ(&(base = static_cast<AbstractMatrix const&>(source)), &base);
    EXPECT_EQ(&(base = static_cast<AbstractMatrix&&>(source)), &base);
    EXPECT_EQ(target[Index(0, 0)], 1.0);
}

TEST(AbstractMatrix, IsSquareOnlyWithElements) {
    EXPECT_TRUE(OwnMatrix(1, 1, {1}).isSquare());
    EXPECT_TRUE(OwnMatrix(2, 2, {1, 2, 3, 4}).isSquare());
    EXPECT_FALSE(OwnMatrix(0, 0, {}).isSquare());
    EXPECT_FALSE(OwnMatrix(1, 2, {1, 2}).isSquare());
    EXPECT_FALSE(OwnMatrix(2, 1, {1, 2}).isSquare());
    EXPECT_FALSE(Matrix().isSquare());
    EXPECT_TRUE(Matrix(3, 3, 0.0).isSquare());
}

TEST(AbstractMatrix, ElementwiseMultiplyTakesAnyLayouts) {
    OwnMatrix const a(2, 3, {1, 2, 3, 4, 5, 6}); // row after row
    Matrix b(2, 3, 0.0);                         // column after column
    for (std::size_t r = 0; r < 2; ++r)
        for (std::size_t c = 0; c < 3; ++c)
            b.set(r, c, 10.0 * static_cast<double>(r) + static_cast<double>(c));
    ErrorCode error;
    for (AbstractMatrix const* left :
         {static_cast<AbstractMatrix const*>(&a), static_cast<AbstractMatrix const*>(&b)}) {
        AbstractMatrix const& right = left == &a ? static_cast<AbstractMatrix const&>(b) : a;
        Matrix const product = left->elementwiseMultiply(right, error);
        ASSERT_EQ(product.size(), Dimensions(2, 3));
        for (std::size_t r = 0; r < 2; ++r)
            for (std::size_t c = 0; c < 3; ++c)
                EXPECT_EQ(product[Index(r, c)], a[Index(r, c)] * b[Index(r, c)]) << r << ',' << c;
        EXPECT_FALSE(error.hasError());
    }
}

TEST(AbstractMatrix, ElementwiseMultiplyWalksRowAfterRowThroughElementAccessOnly) {
    OwnMatrix const a(2, 2, {1, 2, 3, 4});
    OwnMatrix const b(2, 2, {5, 6, 7, 8});
    a.takeCalls();
    ErrorCode error;
    Matrix const product = a.elementwiseMultiply(b, error);
    std::vector<std::string> elements;
    std::size_t shapeQuestions = 0;
    for (std::string const& call : a.takeCalls()) {
        if (call.starts_with("element"))
            elements.push_back(call);
        else
            ++shapeQuestions;
        EXPECT_NE(call, "data");
    }
    EXPECT_EQ(elements,
              (std::vector<std::string>{"element 0,0", "element 0,1", "element 1,0", "element 1,1"}));
    EXPECT_EQ(shapeQuestions, 4U) << "rows and columns: once for the size, once as bounds";
    EXPECT_EQ(product[Index(1, 0)], 21.0);
}

TEST(AbstractMatrix, ElementwiseMultiplyKeepsSpecialValuesBitForBitUnderEveryPolicy) {
    std::vector<double> const x = TestKit::specialValues();
    std::size_t const n = x.size();
    OwnMatrix const a(n, 1, x);
    OwnMatrix const b(n, 1, std::vector<double>(n, -2.0));
    std::vector<double> expected(n);
    for (std::size_t i = 0; i < n; ++i)
        expected[i] = x[i] * -2.0;
    TestKit::forEachPolicy([&] {
        ErrorCode error;
        Matrix const product = a.elementwiseMultiply(b, error);
        ASSERT_EQ(product.size(), Dimensions(n, 1));
        EXPECT_TRUE(sameBits({product.data(), n}, expected));
    });
}

TEST(AbstractMatrix, ElementwiseMultiplyOfDifferentShapesFailsWithTheMismatchAndAnEmptyMatrix) {
    OwnMatrix const a(2, 3, {1, 2, 3, 4, 5, 6});
    for (OwnMatrix const& b : {OwnMatrix(3, 2, {1, 2, 3, 4, 5, 6}), OwnMatrix(2, 2, {1, 2, 3, 4}),
                               OwnMatrix(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9}), OwnMatrix(0, 0, {})}) {
        ErrorCode error;
        Matrix const product = a.elementwiseMultiply(b, error);
        EXPECT_EQ(product.size(), Dimensions(0, 0));
        EXPECT_TRUE(isDimensionsMismatch(error));
        EXPECT_EQ(error.message(), System::String(u8"dimensions mismatch"));
    }
}

TEST(AbstractMatrix, ElementwiseMultiplyLeavesAnEarlierErrorSetOnSuccess) {
    OwnMatrix const a(1, 1, {3});
    ErrorCode error =
        System::ErrorBuilder<LinearAlgebraErrorCode>::make(LinearAlgebraErrorCode::MatrixSingular);
    EXPECT_EQ(a.elementwiseMultiply(a, error)[Index(0, 0)], 9.0);
    EXPECT_EQ(error.code(), 9);
}

TEST(AbstractMatrix, ElementwiseMultiplyOfEmptyMatricesSucceeds) {
    ErrorCode error;
    EXPECT_EQ(Matrix().elementwiseMultiply(OwnMatrix(0, 0, {}), error).size(), Dimensions(0, 0));
    EXPECT_EQ(Matrix(0, 3, 1.0).elementwiseMultiply(OwnMatrix(0, 3, {}), error).size(), Dimensions(0, 3));
    EXPECT_FALSE(error.hasError());
}

TEST(AbstractMatrix, ElementwiseMultiplyTurnsEveryOtherExceptionIntoTheUnknownError) {
    OwnMatrix const a(1, 1, {3});
    for (auto const what : {ThrowingMatrix::What::StandardException, ThrowingMatrix::What::Number}) {
        ErrorCode error;
        EXPECT_EQ(a.elementwiseMultiply(ThrowingMatrix(what), error).size(), Dimensions(0, 0));
        EXPECT_TRUE(error.isUnknown());
        EXPECT_EQ(error.message(), System::String(u8"unknown error"));
    }
}

TEST(AbstractMatrix, ElementwiseMultiplyStoresALinearAlgebraCodeThatAnOperandThrows) {
    ErrorCode error;
    OwnMatrix(1, 1, {3}).elementwiseMultiply(ThrowingMatrix(ThrowingMatrix::What::LinearAlgebraCode), error);
    EXPECT_EQ(error.code(), 9);
    EXPECT_EQ(error.category(), &LinearAlgebraErrorCategory::get());
}

TEST(AbstractMatrix, ElementwiseMultiplyReportsMissingMemoryAsTheUnknownError) {
    if (!TestKit::FailingAllocations::areSupported())
        GTEST_SKIP() << "this build's heap cannot be made to fail";
    Matrix const a(300, 300, 1.0);
    ErrorCode error;
    {
        TestKit::FailingAllocations const noLargeBlocks(100'000);
        EXPECT_EQ(a.elementwiseMultiply(a, error).size(), Dimensions(0, 0));
    }
    EXPECT_TRUE(error.isUnknown());
}

} // namespace

} // namespace Tervane::Math::LegacyTest
