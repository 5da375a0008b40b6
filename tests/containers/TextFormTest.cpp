#include "kit/Allocations.h"
#include "kit/SpecialValues.h"

#include <Math/ComplexVector2.h>
#include <Math/Vector2.h>
#include <System/ErrorCode2.h>

#include <gtest/gtest.h>

#include <complex>
#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

namespace Tervane::Math {

namespace {

using namespace TestKit;

// Long enough for the text to outgrow what is taken for it several times.
constexpr std::size_t length = 300;

/// Every allocation on the way fails once alone and once with all that follow: the text is there as a whole,
/// or there is an error.
template<class Container>
void expectWholeTextOrError(Container& container) {
    if (!FaultyHeap::isSupported())
        GTEST_SKIP() << "the sanitizers' heap cannot be made to fail";
    std::string const whole = container.toString().value().narrow();
    for (auto const faults : {FaultyHeap::Faults::One, FaultyHeap::Faults::AllFromThere}) {
        std::size_t failures = 0;
        for (std::size_t n = 1;; ++n) {
            FaultyHeap const heap(n, faults);
            auto const text = container.toString();
            if (heap.count() < n)
                break;
            if (text) {
                EXPECT_EQ(text->narrow(), whole);
            } else {
                EXPECT_EQ(text.error().code(), -1);
                EXPECT_EQ(&text.error().category(), &System::system_error_category());
                ++failures;
            }
        }
        EXPECT_GT(failures, 3u);
    }
}

TEST(TextForm, OfARealVectorIsWholeOrAnError) {
    Vector2 v(length, 1.0 / 3.0);
    expectWholeTextOrError(v);
}

TEST(TextForm, OfAComplexVectorIsWholeOrAnError) {
    ComplexVector2 z(length);
    for (std::size_t i = 0; i < 2 * length; ++i)
        z.data()[i] = 1.0 / static_cast<double>(i + 3);
    expectWholeTextOrError(z);
}

TEST(TextForm, WritesComplexElementsAsTheStandardInserterDoes) {
    std::vector<double> const values = specialValues();
    for (double const re : values)
        for (double const im : values) {
            std::vector<double> const parts{re, im};
            std::ostringstream expected;
            expected << "[ " << std::complex<double>(re, im) << " ]";
            EXPECT_EQ(ComplexVector2::fromData(parts.data(), 2).value().toString().value().narrow(),
                      expected.str());
        }
}

} // namespace

} // namespace Tervane::Math
