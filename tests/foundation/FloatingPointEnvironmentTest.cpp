#include "foundation/FloatingPointEnvironment.h"

#include "foundation/ElementwiseDispatch.h"
#include "foundation/Operations.h"
#include "kit/Bits.h"
#include "kit/Children.h"
#include "kit/Policies.h"

#include <gtest/gtest.h>

#include <pmmintrin.h>
#include <xmmintrin.h>

#include <algorithm>
#include <cfenv>
#include <cstddef>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace Tervane::Math {

namespace {

using namespace Detail;
using namespace TestKit;

constexpr std::size_t length = 4 * parallelLimit(ElementCost::Streaming);

/// Gives this thread its environment back.
class EnvironmentScope {
public:
    EnvironmentScope() { std::fegetenv(&_environment); }
    ~EnvironmentScope() { std::fesetenv(&_environment); }

private:
    std::fenv_t _environment;
};

struct Setting {
    char const* name;
    void (*apply)();
};

constexpr Setting settings[] = {
    {"as it was",
     [] {
     }},
    {"upward",
     [] {
         std::fesetround(FE_UPWARD);
     }},
    {"downward",
     [] {
         std::fesetround(FE_DOWNWARD);
     }},
    {"toward zero",
     [] {
         std::fesetround(FE_TOWARDZERO);
     }},
    {"flush to zero",
     [] {
         _MM_SET_FLUSH_ZERO_MODE(_MM_FLUSH_ZERO_ON);
     }},
    {"denormals are zero",
     [] {
         _MM_SET_DENORMALS_ZERO_MODE(_MM_DENORMALS_ZERO_ON);
     }},
    {"both, upward",
     [] {
         std::fesetround(FE_UPWARD);
         _MM_SET_FLUSH_ZERO_MODE(_MM_FLUSH_ZERO_ON);
         _MM_SET_DENORMALS_ZERO_MODE(_MM_DENORMALS_ZERO_ON);
     }},
};

struct ThirdInLongDouble {
    static constexpr ElementCost cost = ElementCost::Function;
    double operator()(double x) const { return static_cast<double>(static_cast<long double>(x) / 3.0L); }
};

/// Ordinary values, denormals, and values whose products are denormal.
std::vector<double> values() {
    std::mt19937_64 generator(7);
    std::uniform_real_distribution<double> mantissa(1.0, 2.0);
    std::vector<double> x(length);
    for (std::size_t i = 0; i < length; ++i)
        x[i] = mantissa(generator) * (i % 3 == 0 ? 1.0 : i % 3 == 1 ? 0x1p-1030 : 0x1p-520);
    return x;
}

void startTheWorkers() {
    PolicyScope const scope(Parallel);
    std::vector<double> x(length, 1.0);
    ElementwiseDispatch::transform(x.data(), x.data() + length, x.data(), Negate());
}

template<class Op>
std::vector<double> withItself(std::vector<double> const& x, Op op) {
    std::vector<double> y(length);
    ElementwiseDispatch::transform(x.data(), x.data() + length, x.data(), y.data(), op);
    return y;
}

TEST(FloatingPointEnvironment, OfTheCallerHoldsUnderEveryPolicy) {
    startTheWorkers();
    std::vector<double> const x = values();
    for (Setting const& setting : settings) {
        SCOPED_TRACE(setting.name);
        EnvironmentScope const environment;
        setting.apply();
        setExecutionPolicy(Inline);
        std::vector<double> const products = withItself(x, Multiply());
        std::vector<double> thirds(length);
        ElementwiseDispatch::transform(x.data(), x.data() + length, thirds.data(), ThirdInLongDouble());
        forEachPolicy([&] {
            EXPECT_TRUE(sameBits(withItself(x, Multiply()), products));
            std::vector<double> y(length);
            ElementwiseDispatch::transform(x.data(), x.data() + length, y.data(), ThirdInLongDouble());
            EXPECT_TRUE(sameBits(y, thirds));
        });
    }
}

TEST(FloatingPointEnvironment, LeavesTheCallersAsItWas) {
    startTheWorkers();
    std::vector<double> const x(length, 1.0);
    for (Setting const& setting : settings)
        forEachPolicy([&] {
            SCOPED_TRACE(setting.name);
            EnvironmentScope const environment;
            std::feclearexcept(FE_ALL_EXCEPT);
            setting.apply();
            unsigned const before = _mm_getcsr();
            int const x87RoundingBefore = std::fegetround();
            withItself(x, Multiply());
            EXPECT_EQ(_mm_getcsr(), before);
            EXPECT_EQ(std::fegetround(), x87RoundingBefore);
        });
}

TEST(FloatingPointEnvironment, NotesExceptionsWhereTheyWereCaused) {
    startTheWorkers();
    for (std::size_t const where : {std::size_t{0}, length / 2, length - 1})
        forEachPolicy([&] {
            EnvironmentScope const environment;
            std::vector<double> x(length, 1.0);
            std::feclearexcept(FE_ALL_EXCEPT);
            withItself(x, Divide());
            EXPECT_EQ(std::fetestexcept(FE_ALL_EXCEPT), 0);

            std::feraiseexcept(FE_OVERFLOW);
            x[where] = 0.0; // 0 / 0
            withItself(x, Divide());
            EXPECT_EQ(std::fetestexcept(FE_ALL_EXCEPT), FE_INVALID | FE_OVERFLOW);
        });
}

TEST(FloatingPointEnvironment, OfOthersIsBorrowedAndGivenBack) {
    for (Setting const& own : settings)
        for (Setting const& others : settings) {
            SCOPED_TRACE(std::string(own.name) + " borrows " + others.name);
            EnvironmentScope const environment;
            std::feclearexcept(FE_ALL_EXCEPT);
            others.apply();
            unsigned const othersState = _mm_getcsr() & ~static_cast<unsigned>(_MM_EXCEPT_MASK);
            _mm_setcsr(othersState | _MM_EXCEPT_UNDERFLOW); // which is theirs alone
            int const othersRounding = std::fegetround();
            auto const borrowable = FloatingPointEnvironment::ofThisThread();
            std::thread([&] {
                std::feclearexcept(FE_ALL_EXCEPT);
                own.apply();
                _mm_setcsr(_mm_getcsr() | _MM_EXCEPT_OVERFLOW);
                unsigned const ownState = _mm_getcsr();
                int const ownRounding = std::fegetround();
                {
                    FloatingPointEnvironment::Borrowed const borrowed(borrowable);
                    EXPECT_EQ(_mm_getcsr(), othersState);
                    EXPECT_EQ(std::fegetround(), othersRounding);
                    _mm_setcsr(_mm_getcsr() | _MM_EXCEPT_DIV_ZERO);
                    EXPECT_EQ(borrowed.raisedExceptions(), static_cast<unsigned>(_MM_EXCEPT_DIV_ZERO));
                }
                EXPECT_EQ(_mm_getcsr(), ownState);
                EXPECT_EQ(std::fegetround(), ownRounding);
            }).join();
        }
}

TEST(FloatingPointEnvironment, OfOthersIsInstalledForGood) {
    EnvironmentScope const environment;
    std::fesetround(FE_UPWARD);
    auto const others = FloatingPointEnvironment::ofThisThread();
    unsigned const othersState = _mm_getcsr() & ~static_cast<unsigned>(_MM_EXCEPT_MASK);
    std::thread([&] {
        std::fesetround(FE_TONEAREST);
        others.install(_MM_EXCEPT_OVERFLOW);
        EXPECT_EQ(_mm_getcsr(), othersState | _MM_EXCEPT_OVERFLOW);
        EXPECT_EQ(std::fegetround(), FE_UPWARD); // of the x87 unit
    }).join();
}

struct ExceptionMask {
    static constexpr ElementCost cost = ElementCost::Function;
    double operator()(double /*x*/) const { return _MM_GET_EXCEPTION_MASK(); }
};

TEST(FloatingPointEnvironment, TakesOverWhichExceptionsTrap) {
    startTheWorkers();
    EnvironmentScope const environment;
    std::feclearexcept(FE_ALL_EXCEPT);
    _MM_SET_EXCEPTION_MASK(_MM_MASK_MASK & ~_MM_MASK_DIV_ZERO);
    std::vector<double> const x(length), expected(length, _MM_MASK_MASK & ~_MM_MASK_DIV_ZERO);
    forEachPolicy([&] {
        std::vector<double> y(length);
        ElementwiseDispatch::transform(x.data(), x.data() + length, y.data(), ExceptionMask());
        EXPECT_TRUE(sameBits(y, expected));
    });
}

// The x87 unit traps at the next instruction when an exception is unmasked whose flag is raised already.
TEST(FloatingPointEnvironment, OfAHostThatUnmasksExceptionsIsBorrowedWithFlagsRaised) {
    auto const outcome = runInChild([] {
        long double volatile zero = 0.0L, one = 1.0L;
        feenableexcept(FE_DIVBYZERO);
        auto const unmasked = FloatingPointEnvironment::ofThisThread();
        fedisableexcept(FE_DIVBYZERO);
        long double volatile quotient = one / zero;
        bool const isRaised = std::fetestexcept(FE_DIVBYZERO) != 0;
        {
            FloatingPointEnvironment::Borrowed const borrowed(unmasked);
            quotient = one / (one + one);
        }
        return isRaised && quotient == 0.5L ? 0 : 1;
    });
    EXPECT_TRUE(outcome.isClean()) << describe(outcome);
}

} // namespace

} // namespace Tervane::Math
