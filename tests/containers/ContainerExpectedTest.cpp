// Results of the five containers: their instantiations are exported by the library and behave alike.

#include <Math/ComplexVector2.h>
#include <Math/ComplexVectorView2.h>
#include <Math/Errors.h>
#include <Math/Matrix2.h>
#include <Math/Vector2.h>
#include <Math/VectorView2.h>
#include <System/Exceptions.h>
#include <System/Expected.h>

#include <gtest/gtest.h>

#include <utility>

namespace Tervane::Math {

namespace {

using System::bad_expected_access;
using System::ErrorCode2;

template<class T>
class ContainerExpected : public testing::Test {
protected:
    using Result = System::Expected<T, ErrorCode2>;

    static T value();
    static bool isValue(T const& t);
    static ErrorCode2 error() { return MatrixSingular; }

    static void expectValue(Result const& result) {
        ASSERT_TRUE(result.has_value());
        EXPECT_TRUE(isValue(*result));
    }

    static void expectError(Result const& result) {
        ASSERT_FALSE(result.has_value());
        EXPECT_TRUE(result.error() == error());
    }
};

double const elements[] = {1.0, 2.0};

template<>
Vector2 ContainerExpected<Vector2>::value() {
    return Vector2(elements, 2);
}
template<>
VectorView2 ContainerExpected<VectorView2>::value() {
    return VectorView2(elements, 2, Column);
}
template<>
Matrix2 ContainerExpected<Matrix2>::value() {
    Matrix2 m(1, 2, 0.0);
    m[0][0] = 1.0;
    m[1][0] = 2.0;
    return m;
}
template<>
ComplexVector2 ContainerExpected<ComplexVector2>::value() {
    return ComplexVector2::fromData(elements, 2).value();
}
template<>
ComplexVectorView2 ContainerExpected<ComplexVectorView2>::value() {
    static ComplexVector2 z = ComplexVector2::fromData(elements, 2).value();
    return z.view();
}
template<class T>
bool ContainerExpected<T>::isValue(T const& t) {
    return t.data() != nullptr && t.data()[0] == 1.0 && t.data()[1] == 2.0;
}

using Containers = testing::Types<Vector2, VectorView2, Matrix2, ComplexVector2, ComplexVectorView2>;
TYPED_TEST_SUITE(ContainerExpected, Containers);

TYPED_TEST(ContainerExpected, HoldsADefaultValueByDefault) {
    typename TestFixture::Result const result;
    ASSERT_TRUE(result);
    EXPECT_EQ(result->data(), nullptr);
}

TYPED_TEST(ContainerExpected, CopiesAndMovesEitherAlternative) {
    typename TestFixture::Result const value(this->value()), error(this->error());
    this->expectValue(typename TestFixture::Result(value));
    this->expectError(typename TestFixture::Result(error));
    typename TestFixture::Result source(value);
    this->expectValue(typename TestFixture::Result(std::move(source)));
    EXPECT_TRUE(source.has_value()); // the flag stays
}

TYPED_TEST(ContainerExpected, IsAssignedAcrossStates) {
    typename TestFixture::Result const value(this->value()), error(this->error());
    for (auto const* const from : {&value, &error})
        for (auto const* const to : {&value, &error}) {
            typename TestFixture::Result copied(*to), moved(*to), source(*from);
            copied = *from;
            moved = std::move(source);
            if (from == &value) {
                this->expectValue(copied);
                this->expectValue(moved);
            } else {
                this->expectError(copied);
                this->expectError(moved);
            }
        }
}

TYPED_TEST(ContainerExpected, IsSwappedAcrossStates) {
    typename TestFixture::Result value(this->value()), error(this->error());
    value.swap(error);
    this->expectError(value);
    this->expectValue(error);
    value.swap(error);
    this->expectValue(value);
    this->expectError(error);
}

TYPED_TEST(ContainerExpected, GivesItsValueInFourForms) {
    typename TestFixture::Result result(this->value());
    auto const& constant = result;
    EXPECT_TRUE(this->isValue(result.value()));
    EXPECT_TRUE(this->isValue(constant.value()));
    EXPECT_TRUE(this->isValue(std::move(constant).value()));
    TypeParam const taken = std::move(result).value();
    EXPECT_TRUE(this->isValue(taken));
}

TYPED_TEST(ContainerExpected, ThrowsItsErrorWhenAskedForAValue) {
    typename TestFixture::Result result(this->error());
    auto const& constant = result;
    auto const expectThrow = [&](auto const& ask) {
        try {
            ask();
            FAIL() << "nothing thrown";
        } catch (bad_expected_access<ErrorCode2> const& exception) {
            EXPECT_TRUE(exception.error() == this->error());
            EXPECT_STREQ(exception.what(), "bad expected access");
        }
    };
    expectThrow([&] { static_cast<void>(result.value()); });
    expectThrow([&] { static_cast<void>(constant.value()); });
    expectThrow([&] { static_cast<void>(std::move(constant).value()); });
    expectThrow([&] { static_cast<void>(std::move(result).value()); });
    this->expectError(result);
}

} // namespace

} // namespace Tervane::Math
