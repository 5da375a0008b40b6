#include <Math/Errors.h>
#include <System/ErrorCode.h>
#include <System/ErrorCode2.h>
#include <System/String.h>
#include <System/String2.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tervane::Math {

namespace {

using System::ErrorCategory2;
using System::ErrorCode;
using System::ErrorCode2;

static_assert(std::is_same_v<std::underlying_type_t<LinearAlgebraErrc>, std::int32_t>);
static_assert(std::is_same_v<std::underlying_type_t<FFTErrc>, std::int32_t>);
static_assert(std::is_same_v<std::underlying_type_t<EMIErrc>, std::int32_t>);
static_assert(std::is_same_v<std::underlying_type_t<MathErrc>, std::int32_t>);
static_assert(
    std::is_convertible_v<LinearAlgebraErrc, int> && !std::is_convertible_v<LinearAlgebraErrorCode, int>);
static_assert(LinearAlgebraErrc::MatrixSingular == MatrixSingular && MatrixSingular == 9);

struct Row {
    int code;
    std::string text;
};

void expectTexts(ErrorCategory2 const& category, std::vector<Row> const& rows) {
    for (auto const& [code, text] : rows)
        EXPECT_EQ(category.message(code).narrow(), text) << code;
}

std::string unrecognised(int code) {
    return "Unrecognised error (" + std::to_string(code) + ")";
}

TEST(LinearAlgebraErrorCategory2, HasATextForEachCode) {
    expectTexts(linear_algebra_error_category(), {{TableNotVector, "table is not a vector"},
                                                  {SolutionNotComputed, "solution could not be computed"},
                                                  {FailedToConverge, "failed to converge"},
                                                  {DimensionsMismatch, "dimensions mismatch"},
                                                  {InvalidParameter, "invalid parameter"},
                                                  {ConstraintRankDeficient, "solution could not be computed"},
                                                  {SystemRankDeficient, "solution could not be computed"},
                                                  {MatrixNotSquare, "matrix is not square"},
                                                  {MatrixSingular, "matrix is singular"}});
    EXPECT_STREQ(linear_algebra_error_category().name(), "math-la");
}

TEST(LinearAlgebraErrorCategory2, HasNoTextForLeastSquaresFailed) {
    EXPECT_EQ(linear_algebra_error_category().message(LeastSquaresFailed).narrow(), "Unrecognised error (7)");
}

TEST(FFTErrorCategory, HasATextForEachCode) {
    expectTexts(fft_error_category(), {{0, "Descriptor unusable for computation"},
                                       {1, "Invalid settings in one or more configuration parameters"},
                                       {2, "Inconsistent configuration or input parameters"},
                                       {3, "Length of a dimension exceeds maximum size for int32"},
                                       {4, "Memory error"},
                                       {5, "Data size of a transform exceeds maximum size for int32"},
                                       {6, "Internal library error"},
                                       {7, "Multithreaded error"},
                                       {8, "Number of threads error"},
                                       {9, "Unimplemented"},
                                       {10, "Unknown error"}});
    EXPECT_STREQ(fft_error_category().name(), "math-fft");
}

TEST(EMIErrorCategory, HasATextForEachCode) {
    expectTexts(emi_error_category(),
                {{StartFrequencyTooSmall, "Start frequency too small, value should be >= 9000 Hz"},
                 {StartAboveStop, "Start frequency larger than stop frequency"}});
    EXPECT_STREQ(emi_error_category().name(), "math-emi");
}

TEST(MathErrorCategory, HasATextForEachCode) {
    expectTexts(math_error_category(),
                {{OddComplexDataLength, "complex vector from data cannot have odd length"}});
    EXPECT_STREQ(math_error_category().name(), "math");
}

TEST(CurrentCategories, RenderTheCodesThatTheyDoNotList) {
    for (int const code : {-1, 12, 100, INT_MAX, INT_MIN}) {
        EXPECT_EQ(linear_algebra_error_category().message(code).narrow(), unrecognised(code));
        EXPECT_EQ(fft_error_category().message(code).narrow(), unrecognised(code));
        EXPECT_EQ(emi_error_category().message(code).narrow(), unrecognised(code));
        EXPECT_EQ(math_error_category().message(code).narrow(), unrecognised(code));
    }
    EXPECT_EQ(linear_algebra_error_category().message(10).narrow(), unrecognised(10));
    EXPECT_EQ(fft_error_category().message(11).narrow(), unrecognised(11));
    EXPECT_EQ(emi_error_category().message(2).narrow(), unrecognised(2));
    EXPECT_EQ(math_error_category().message(1).narrow(), unrecognised(1));
}

TEST(CurrentCategories, AreSingleObjects) {
    EXPECT_EQ(&linear_algebra_error_category(), &linear_algebra_error_category());
    EXPECT_NE(&linear_algebra_error_category(), &fft_error_category());
    EXPECT_NE(&emi_error_category(), &math_error_category());
}

TEST(CurrentCategories, AreTheSameFromEveryThread) {
    std::vector<ErrorCategory2 const*> seen(8);
    std::vector<std::thread> threads;
    for (auto& category : seen)
        threads.emplace_back([&category] { category = &emi_error_category(); });
    for (auto& thread : threads)
        thread.join();
    for (auto const* category : seen)
        EXPECT_EQ(category, &emi_error_category());
}

template<class E>
void expectCode(E e, int code, ErrorCategory2 const& category) {
    ErrorCode2 const made = System::ErrorCodeEnumConstructor<E>()(e);
    EXPECT_EQ(made.code(), code);
    EXPECT_EQ(&made.category(), &category);
    EXPECT_TRUE(made == ErrorCode2(e));
}

TEST(Enumerators, BecomeCodesOfTheirCategory) {
    expectCode(DimensionsMismatch, 3, linear_algebra_error_category());
    expectCode(UnknownError, 10, fft_error_category());
    expectCode(StartAboveStop, 1, emi_error_category());
    expectCode(OddComplexDataLength, 0, math_error_category());
    EXPECT_FALSE(ErrorCode2(TableNotVector) == ErrorCode2(OddComplexDataLength));
}

TEST(LegacyLinearAlgebraErrorCategory, HasTheSameTexts) {
    LinearAlgebraErrorCategory const& category = LinearAlgebraErrorCategory::get();
    for (int const code : {0, 1, 2, 3, 4, 5, 6, 8, 9})
        EXPECT_EQ(category.message(code).narrow(), linear_algebra_error_category().message(code).narrow());
    EXPECT_EQ(category.name().narrow(), "math_la");
}

TEST(LegacyLinearAlgebraErrorCategory, CallsEveryOtherCodeUnhandled) {
    for (int const code : {7, 10, -1, INT_MAX, INT_MIN})
        EXPECT_EQ(LinearAlgebraErrorCategory::get().message(code).narrow(), "unhandled") << code;
}

TEST(LegacyLinearAlgebraErrorCategory, IsASingleObjectAndCanBeMadeToo) {
    EXPECT_EQ(&LinearAlgebraErrorCategory::get(), &LinearAlgebraErrorCategory::get());
    LinearAlgebraErrorCategory const own;
    System::ErrorCategory const& base = own;
    EXPECT_EQ(base.message(3).narrow(), "dimensions mismatch");
    EXPECT_NE(&base, &LinearAlgebraErrorCategory::get());
}

/// Made before any category is used, so it ends after objects that come with their first use.
void askForMessagesWhileTheProcessEnds() {
    static struct Late {
        ~Late() {
            bool const isRight =
                ErrorCode2(3, linear_algebra_error_category()).message().narrow() == "dimensions mismatch"
                && ErrorCode2(4, fft_error_category()).message().narrow() == "Memory error"
                && ErrorCode2(7, emi_error_category()).message().narrow() == "Unrecognised error (7)"
                && ErrorCode2(0, math_error_category()).message().narrow()
                       == "complex vector from data cannot have odd length"
                && std::string(math_error_category().name()) == "math"
                && ErrorCode(9, LinearAlgebraErrorCategory::get()).message().narrow() == "matrix is singular"
                && !ErrorCode2(2, System::system_error_category()).message().narrow().empty();
            std::_Exit(isRight ? EXIT_SUCCESS : EXIT_FAILURE);
        }
    } const late;
    for (ErrorCategory2 const* category : {&linear_algebra_error_category(), &fft_error_category(),
                                           &emi_error_category(), &math_error_category()})
        static_cast<void>(category->message(0));
    static_cast<void>(LinearAlgebraErrorCategory::get().message(0));
    std::exit(EXIT_FAILURE);
}

TEST(ErrorCategories, LiveUntilTheProcessEnds) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(askForMessagesWhileTheProcessEnds(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST(LegacyErrorBuilder, MakesCodesAndDropsTheText) {
    using Builder = System::ErrorBuilder<LinearAlgebraErrorCode>;
    System::String const text(u8"which one");
    for (ErrorCode const& error :
         {Builder::make(LinearAlgebraErrorCode::InvalidParameter),
          Builder::make(LinearAlgebraErrorCode::InvalidParameter, System::String(u8"moved")),
          Builder::make(LinearAlgebraErrorCode::InvalidParameter, text)}) {
        EXPECT_TRUE(error.hasError());
        EXPECT_EQ(error.code(), 4);
        EXPECT_EQ(error.category(), &LinearAlgebraErrorCategory::get());
        EXPECT_EQ(error.message().narrow(), "invalid parameter");
    }
    static_assert(
        std::is_empty_v<Builder> && std::is_copy_assignable_v<Builder> && std::is_move_assignable_v<Builder>);
}

} // namespace

} // namespace Tervane::Math
