// Objects for a debugger to look at; stop() is where it does.

#include <Math/Math.h>
#include <System/System.h>

#include <complex>
#include <cstdio>
#include <stdexcept>
#include <utility>

using namespace Tervane;
using namespace Tervane::Math;

extern "C" void stop() {
    std::puts("stopped");
}

// What the library says of a code goes to standard output, what the debugger says of it comes beside it.
extern "C" void look(System::ErrorCode2 const& code) {
    std::printf("%s %d: %s\n", code.category().name(), code.code(), code.message().narrow().c_str());
}

extern "C" void lookAtLegacy(System::ErrorCode const& code) {
    std::printf("%s %d: %s\n", code.category()->name().narrow().c_str(), code.code(),
                code.message().narrow().c_str());
}

void lookAtAllCodes() {
    for (auto const* category :
         {&linear_algebra_error_category(), &fft_error_category(), &emi_error_category(),
          &math_error_category(), &System::generic_error_category()})
        for (int code = -1; code < 13; ++code)
            look(System::ErrorCode2(code, *category));
    for (int code = -1; code < 13; ++code)
        lookAtLegacy(System::ErrorCode(code, LinearAlgebraErrorCategory::get()));
}

int main() {
    double const values[] = {1.0, 2.5, -3.0, 4.0, 5.0, 6.0};
    Vector2 vector2(values, 3);
    Vector2 empty2;
    Vector2 long2(1000, 7.0);
    VectorView2 const view2(values, 2, Row);
    Matrix2 matrix2(2, 3, 0.0);
    for (int c = 0; c < 3; ++c)
        for (int r = 0; r < 2; ++r)
            matrix2[static_cast<std::size_t>(c)][r] = 10.0 * r + c;
    ComplexVector2 complex2 = ComplexVector2::fromData(values, 4).value();
    ComplexVectorView2 const complexView2 = complex2.view();
    Vector vector(values, 3);
    ViewVector const view(vector);
    Matrix matrix(2, 2, 1.5);
    ComplexVector const complex({{1.0, -2.0}, {0.5, 0.0}});
    LinearAlgebraResult const result(Vector(values, 2), Vector(values + 2, 1), System::ErrorCode());
    Vector movedFrom(values, 3);
    Vector const taken(std::move(movedFrom));
    System::Expected<Vector2, System::ErrorCode2> const good = vector2;
    System::Expected<Vector2, System::ErrorCode2> const bad = DimensionsMismatch;
    System::Expected<void, System::ErrorCode2> const done;
    System::Expected<void, System::ErrorCode2> const failed = std::errc::result_out_of_range;
    System::ErrorCode2 const code2 = MatrixSingular;
    System::ErrorCode noError;
    System::ErrorCode code =
        System::ErrorBuilder<LinearAlgebraErrorCode>::make(LinearAlgebraErrorCode::MatrixNotSquare);
    System::ErrorCode unknown;
    unknown.assignUnknown();
    System::ErrorCode described;
    described.assign(std::runtime_error("out of luck"));
    System::String2 const text2 = u8"5 µV";
    System::String const text = u8"old text";
    System::String2 const noText;
    Dimensions const dimensions(2, 3);
    Index const index(4, 5);
    Slice const slice = makeSlice(1, 10, 3);
    stop();
    lookAtAllCodes();
    return vector2.length() + taken.rows() + matrix.rows() + long2.length() == 0 || empty2.length() != 0;
}
