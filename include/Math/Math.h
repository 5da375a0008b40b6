#pragma once

/// @file
/// The whole interface of TVNMath: both generations' containers, their arithmetic and functions, linear
/// algebra and signal processing.
///
/// @code
/// #include <Math/Math.h>
///
/// using namespace Tervane::Math;
/// auto const spectrum = FFT::fft_real(sin(2.0 * 3.141592653589793 * 50.0 * linspace(0.0, 1.0, 1000)));
/// if (spectrum)
///     std::cout << max(abs(*spectrum)) << '\n';
/// @endcode

#include <Math/AbstractDataTable.h>
#include <Math/AbstractMatrix.h>
#include <Math/AbstractVector.h>
#include <Math/AlignedAllocator.h>
#include <Math/BLAS.h>
#include <Math/BasicObject.h>
#include <Math/ComplexVector.h>
#include <Math/ComplexVector2.h>
#include <Math/ComplexVectorView2.h>
#include <Math/Dimensions.h>
#include <Math/Elementwise.h>
#include <Math/Errors.h>
#include <Math/ExecutionPolicy.h>
#include <Math/Export.h>
#include <Math/FFT.h>
#include <Math/FloorDivision.h>
#include <Math/Generators.h>
#include <Math/Index.h>
#include <Math/Interpolation.h>
#include <Math/LAPACK.h>
#include <Math/LinearAlgebraResult.h>
#include <Math/Matrix.h>
#include <Math/Matrix2.h>
#include <Math/MatrixLayout.h>
#include <Math/Random.h>
#include <Math/Reductions.h>
#include <Math/Slice.h>
#include <Math/Sorting.h>
#include <Math/Transpose.h>
#include <Math/Vector.h>
#include <Math/Vector2.h>
#include <Math/VectorOrientation.h>
#include <Math/VectorView2.h>
#include <Math/Version.h>
#include <Math/ViewMatrix.h>
#include <Math/ViewVector.h>
#include <Math/Window.h>
#include <System/System.h>
