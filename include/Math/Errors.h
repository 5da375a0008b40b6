#pragma once

/// @file
/// The library's errors: their codes, categories and texts.
///
/// An operation of the current generation returns a System::Expected that holds one of these codes on
/// failure:
///
/// @code
/// using namespace Tervane::Math;
/// auto const product = BLAS::gemm(NoTranspose, NoTranspose, Matrix2(2, 3, 1.0), Matrix2(2, 3, 1.0));
/// if (!product && product.error() == Tervane::System::ErrorCode2(DimensionsMismatch))
///     std::cerr << product.error().message() << '\n';        // dimensions mismatch
/// @endcode
///
/// Compare codes, not texts. Categories are single objects of the process and are compared by identity; the
/// accessors are safe from any thread, the objects immutable and alive until the process ends.

#include <Math/Export.h>
#include <System/ErrorCode.h>
#include <System/ErrorCode2.h>

#include <cstdint>

namespace Tervane::Math {

/// Failures of the BLAS and LAPACK wrappers; category "math-la". Three of them share a text (compatibility
/// C2).
enum LinearAlgebraErrc : std::int32_t {
    TableNotVector = 0,          ///< "table is not a vector"
    SolutionNotComputed = 1,     ///< "solution could not be computed": a zero pivot
    FailedToConverge = 2,        ///< "failed to converge"
    DimensionsMismatch = 3,      ///< "dimensions mismatch": mend the shapes of the operands
    InvalidParameter = 4,        ///< "invalid parameter": an argument that the driver itself refused
    ConstraintRankDeficient = 5, ///< "solution could not be computed": the constraints are not independent
    SystemRankDeficient = 6,     ///< "solution could not be computed": the solution is not unique
    LeastSquaresFailed = 7,      ///< no text of its own (compatibility C1): a deficient rank in `gels`, a
                                 ///< decomposition that did not converge in `gelsd`
    MatrixNotSquare = 8,         ///< "matrix is not square"
    MatrixSingular = 9,          ///< "matrix is singular"
};

/// Failures of the Fourier transforms; category "math-fft".
enum FFTErrc : std::int32_t {
    DescriptorUnusable = 0,        ///< "Descriptor unusable for computation"
    InvalidConfiguration = 1,      ///< "Invalid settings in one or more configuration parameters"
    InconsistentConfiguration = 2, ///< "Inconsistent configuration or input parameters"
    DimensionTooLarge = 3,         ///< "Length of a dimension exceeds maximum size for int32"
    MemoryError = 4,               ///< "Memory error"
    DataSizeTooLarge = 5,     ///< "Data size of a transform exceeds maximum size for int32"; never reported
                              ///< (compatibility C5)
    InternalError = 6,        ///< "Internal library error"
    MultithreadedError = 7,   ///< "Multithreaded error"
    NumberOfThreadsError = 8, ///< "Number of threads error"
    Unimplemented = 9,        ///< "Unimplemented"
    UnknownError = 10,        ///< "Unknown error"
};

/// Failures of conducted-emission settings; category "math-emi".
enum EMIErrc : std::int32_t {
    StartFrequencyTooSmall = 0, ///< "Start frequency too small, value should be >= 9000 Hz"
    StartAboveStop = 1,         ///< "Start frequency larger than stop frequency"
};

/// Failures of the containers; category "math".
enum MathErrc : std::int32_t {
    OddComplexDataLength = 0, ///< "complex vector from data cannot have odd length"
};

/// @name Categories of the current generation
/// @{

/// The one category object of each enumeration. A code that its table does not list has the text
/// "Unrecognised error (N)".
TVNMATH_API System::ErrorCategory2 const& linear_algebra_error_category();
TVNMATH_API System::ErrorCategory2 const& fft_error_category();
TVNMATH_API System::ErrorCategory2 const& emi_error_category();
TVNMATH_API System::ErrorCategory2 const& math_error_category();
/// @}

/// Failures that the legacy generation reports; the values and enumerators of LinearAlgebraErrc, category
/// "math_la".
enum class LinearAlgebraErrorCode : std::int32_t {
    TableNotVector = 0,
    SolutionNotComputed = 1,
    FailedToConverge = 2,
    DimensionsMismatch = 3,
    InvalidParameter = 4,
    ConstraintRankDeficient = 5,
    SystemRankDeficient = 6,
    LeastSquaresFailed = 7,
    MatrixNotSquare = 8,
    MatrixSingular = 9,
};

/// The legacy category of LinearAlgebraErrorCode.
class TVNMATH_API LinearAlgebraErrorCategory : public System::ErrorCategory {
public:
    /// Another object than get() gives: its codes are of another category.
    LinearAlgebraErrorCategory();
    ~LinearAlgebraErrorCategory() override;

    /// The text of a code, the same as in the current generation; "unhandled" for every code that the table
    /// does not list and for `LeastSquaresFailed`.
    System::String message(int code) const override;

    /// "math_la": with an underscore, where the current category has a hyphen (compatibility C3).
    System::String name() const override;

    /// The one object that codes of this category refer to.
    static LinearAlgebraErrorCategory const& get();
};

} // namespace Tervane::Math

namespace Tervane::System {

/// Lets a Math::LinearAlgebraErrc be returned as an error.
template<>
struct TVNMATH_API ErrorCodeEnumConstructor<Math::LinearAlgebraErrc> {
    /// The code of `e` in Math::linear_algebra_error_category().
    ErrorCode2 operator()(Math::LinearAlgebraErrc e) const;
};

/// Lets a Math::FFTErrc be returned as an error.
template<>
struct TVNMATH_API ErrorCodeEnumConstructor<Math::FFTErrc> {
    /// The code of `e` in Math::fft_error_category().
    ErrorCode2 operator()(Math::FFTErrc e) const;
};

/// Lets a Math::EMIErrc be returned as an error.
template<>
struct TVNMATH_API ErrorCodeEnumConstructor<Math::EMIErrc> {
    /// The code of `e` in Math::emi_error_category().
    ErrorCode2 operator()(Math::EMIErrc e) const;
};

/// Lets a Math::MathErrc be returned as an error.
template<>
struct TVNMATH_API ErrorCodeEnumConstructor<Math::MathErrc> {
    /// The code of `e` in Math::math_error_category().
    ErrorCode2 operator()(Math::MathErrc e) const;
};

/// Makes legacy errors from LinearAlgebraErrorCode. Stateless.
template<>
class TVNMATH_API ErrorBuilder<Math::LinearAlgebraErrorCode> {
public:
    /// The error of `code`.
    static ErrorCode make(Math::LinearAlgebraErrorCode code);

    /// @name With a text
    /// @{

    /// The text is accepted and dropped, the error is that of make(code) (compatibility C4).
    static ErrorCode make(Math::LinearAlgebraErrorCode code, String&& text);
    static ErrorCode make(Math::LinearAlgebraErrorCode code, String const& text);
    /// @}
};

} // namespace Tervane::System
