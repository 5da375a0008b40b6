#include "endurance/Operations.h"

#include "kit/SpecialValues.h"

#include <Math/Math.h>
#include <System/Guard.h>
#include <System/System.h>

#include <algorithm>
#include <complex>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

namespace Tervane::Math::Endurance {

namespace {

using System::ErrorCode;

Vector2 currentOf(std::vector<double> const& values) {
    return Vector2(values.data(), values.size());
}

/// Column by column from `seed`, with a diagonal that makes it well conditioned.
template<class AnyMatrix>
AnyMatrix matrixOf(std::size_t rows, std::size_t columns, unsigned seed) {
    AnyMatrix m(rows, columns, 0.0);
    std::vector<double> const values = TestKit::ordinaryValues(rows * columns, seed);
    std::copy(values.begin(), values.end(), m.data());
    for (std::size_t i = 0; i < std::min(rows, columns); ++i)
        m[Index(i, i)] += 50.0;
    return m;
}

/// What all calls read.
struct Operands {
    explicit Operands(std::size_t length)
        : n(length),
          values(TestKit::ordinaryValues(length, 1)),
          others(TestKit::ordinaryValues(length, 2)),
          ascending(sorted(values)),
          parts(TestKit::ordinaryValues(2 * length, 3)) {}

    std::size_t n;
    std::vector<double> values;
    std::vector<double> others;
    std::vector<double> ascending;
    std::vector<double> parts;

    Vector2 a = currentOf(values);
    Vector2 b = currentOf(others);
    Vector2 breakpoints = currentOf(ascending);
    VectorView2 view{others.data(), others.size(), Row};
    ComplexVector2 z = ComplexVector2::fromData(parts.data(), parts.size()).value();
    Matrix2 square = matrixOf<Matrix2>(6, 6, 4);
    Matrix2 tall = matrixOf<Matrix2>(8, 4, 5);
    Matrix2 wide = matrixOf<Matrix2>(2, 4, 6);
    Vector2 six{others.data(), 6};
    Vector2 eight{others.data(), 8};
    Vector2 two{others.data(), 2};

    Vector oldA{values};
    Vector oldB{others};
    Vector oldBreakpoints{ascending};
    ComplexVector oldZ = complexOf(parts);
    Matrix oldSquare = matrixOf<Matrix>(6, 6, 4);
    Matrix oldTall = matrixOf<Matrix>(8, 4, 5);
    Matrix oldWide = matrixOf<Matrix>(2, 4, 6);
    Vector oldSix{others.data(), 6};
    Vector oldEight{others.data(), 8};
    Vector oldTwo{others.data(), 2};

private:
    static std::vector<double> sorted(std::vector<double> values) {
        std::sort(values.begin(), values.end());
        return values;
    }

    static ComplexVector complexOf(std::vector<double> const& parts) {
        ComplexVector z;
        z.setData(parts.data(), parts.size() / 2);
        return z;
    }
};

template<class T>
concept TableOfNumbers = requires(T const& t) {
    t.data();
    t.rows();
    t.columns();
};

std::vector<double> numbersOf(double x) {
    return {x};
}

std::vector<double> numbersOf(std::string_view text) {
    return {text.begin(), text.end()};
}

template<TableOfNumbers Table>
std::vector<double> numbersOf(Table const& table) {
    return {table.data(), table.data() + table.rows() * table.columns()};
}

std::vector<double> numbersOf(ComplexVector2 const& z) {
    return {z.data(), z.data() + 2 * z.length()};
}

std::vector<double> numbersOf(ComplexVector const& z) {
    return {z.data(), z.data() + 2 * z.length()};
}

std::vector<double> numbersOf(VectorView2 const& view) {
    return {view.data(), view.data() + view.length()};
}

/// The table under construction: each entry reads the shared operands and gives something that has numbers.
class Table {
public:
    explicit Table(std::size_t n) : _operands(std::make_shared<Operands const>(n)) {}

    template<class Call>
    void add(std::string name, Call const& call, bool isReproducible = true) {
        _operations.push_back({std::move(name),
                               [operands = _operands, call] { return numbersOf(call(*operands)); },
                               isReproducible});
    }

    std::vector<Operation> take() { return std::move(_operations); }

private:
    std::shared_ptr<Operands const> _operands;
    std::vector<Operation> _operations;
};

void addContainers(Table& table) {
    table.add("Vector2 copied, moved and assigned", [](Operands const& o) {
        Vector2 copy(o.a);
        Vector2 taken(std::move(copy));
        copy = taken;
        return copy;
    });
    table.add("Vector2 resized", [](Operands const& o) {
        Vector2 v(o.a);
        v.resize(2 * o.n, 1.5).value();
        v.resize(o.n / 2).value();
        v.reserve(3 * o.n);
        return v;
    });
    table.add("Vector2 sliced", [](Operands const& o) { return o.a[makeSlice(-1, 0, -2)]; });
    table.add("Vector2 as text", [](Operands const& o) {
        Vector2 v(o.a.data(), std::min<std::size_t>(o.n, 20));
        return v.toString().value().narrow();
    });
    table.add("VectorView2 copied",
              [](Operands const& o) { return Vector2(VectorView2(o.view).sliced(1, o.n - 1)); });
    table.add("Matrix2 copied, moved and assigned", [](Operands const& o) {
        Matrix2 copy(o.square);
        Matrix2 taken(std::move(copy));
        copy = taken;
        return copy;
    });
    table.add("Matrix2 column", [](Operands const& o) { return VectorView2(o.tall, 2); });
    table.add("ComplexVector2 from data", [](Operands const& o) {
        return ComplexVector2::fromData(o.parts.data(), o.parts.size()).value();
    });
    table.add("ComplexVector2 as text", [](Operands const& o) {
        return ComplexVector2::fromData(o.parts.data(), 10).value().toString().value().narrow();
    });
    table.add("Vector copied, moved and assigned", [](Operands const& o) {
        Vector copy(o.oldA);
        Vector taken(std::move(copy));
        copy = taken;
        return copy;
    });
    table.add("Vector resized", [](Operands const& o) {
        Vector v(o.oldA);
        v.resize(2 * o.n, 1.5);
        v.reserve(3 * o.n);
        return v;
    });
    table.add("Vector sliced", [](Operands const& o) { return o.oldA[makeSlice(-1, 0, -2)]; });
    table.add("Vectors concatenated", [](Operands const& o) { return Vector{o.oldA, o.oldB}; });
    table.add("Vector from a view",
              [](Operands const& o) { return Vector(ViewVector(o.oldA).sliced(1, o.n - 1)); });
    table.add("Matrix resized", [](Operands const& o) {
        Matrix m(o.oldSquare);
        m.resize(9, 9, 2.0);
        return m;
    });
    table.add("Matrix transposed", [](Operands const& o) { return o.oldTall.transposed(); });
    table.add("Matrices stacked", [](Operands const& o) {
        return Matrix::stack({{o.oldSquare, o.oldSquare}, {o.oldSquare, o.oldSquare}});
    });
    table.add("ComplexVector copied and moved", [](Operands const& o) {
        ComplexVector copy(o.oldZ);
        ComplexVector taken(std::move(copy));
        return taken;
    });
}

void addArithmetic(Table& table) {
    table.add("Vector2 sum", [](Operands const& o) { return o.a + o.b; });
    table.add("Vector2 difference of a view", [](Operands const& o) { return o.a - o.view; });
    table.add("Vector2 difference from a temporary", [](Operands const& o) { return o.a - Vector2(o.b); });
    table.add("Vector2 chain", [](Operands const& o) { return -(2.0 * o.a + o.b * 3 - 1) / 7.0; });
    table.add("Vector2 quotient", [](Operands const& o) { return o.a / o.b; });
    table.add("Vector2 reciprocal", [](Operands const& o) { return 1 / o.a; });
    table.add("Vector2 compound assignment", [](Operands const& o) {
        Vector2 v(o.a);
        v += o.b;
        v -= o.view;
        v *= v;
        v /= std::size_t{3};
        return v;
    });
    table.add("ComplexVector2 scaled", [](Operands const& o) { return 2.0 * o.z / 3.0; });
    table.add("ComplexVector2 weighted", [](Operands const& o) { return o.a * o.z; });
    table.add("ComplexVector2 reciprocal", [](Operands const& o) { return 1.0 / o.z; });
    table.add("Vector sum", [](Operands const& o) { return ::operator+(Vector(o.oldA), o.oldB); });
    table.add("Vector difference", [](Operands const& o) { return ::operator-(o.oldA, Vector(o.oldB)); });
    table.add("Vector product", [](Operands const& o) { return o.oldA * o.oldB; });
    table.add("Vector chain", [](Operands const& o) { return -(2.0 - (o.oldA * 3.0 + 1.0) / 7.0); });
    table.add("Vector compound assignment", [](Operands const& o) {
        Vector v(o.oldA);
        v += o.oldB;
        v -= ViewVector(o.oldB);
        return v;
    });
    table.add("ComplexVector scaled",
              [](Operands const& o) { return ::operator/(::operator*(2.0, o.oldZ), 3.0); });
    table.add("ComplexVector weighted", [](Operands const& o) { return o.oldA * o.oldZ; });
}

void addFunctions(Table& table) {
    table.add("abs", [](Operands const& o) { return abs(o.a); });
    table.add("sin", [](Operands const& o) { return sin(o.a); });
    table.add("cos", [](Operands const& o) { return cos(o.a); });
    table.add("exp", [](Operands const& o) { return exp(o.a); });
    table.add("log10", [](Operands const& o) { return log10(abs(o.a)); });
    table.add("sqrt", [](Operands const& o) { return sqrt(abs(o.a)); });
    table.add("pow", [](Operands const& o) { return pow(o.a, 3); });
    table.add("magnitude", [](Operands const& o) { return abs(o.z); });
    table.add("legacy abs", [](Operands const& o) { return abs(o.oldA); });
    table.add("legacy sin and cos", [](Operands const& o) { return sin(cos(o.oldA)); });
    table.add("legacy exp", [](Operands const& o) { return exp(o.oldA); });
    table.add("legacy log10 and sqrt", [](Operands const& o) { return log10(sqrt(abs(o.oldA))); });
    table.add("legacy pow", [](Operands const& o) { return pow(o.oldA, -2); });
    table.add("legacy magnitude", [](Operands const& o) { return abs(o.oldZ); });
    // The parallel policies have an order of their own for sums.
    table.add(
        "sum", [](Operands const& o) { return sum(o.a); }, false);
    table.add(
        "legacy sum", [](Operands const& o) { return sum(o.oldA); }, false);
    table.add("mean and max",
              [](Operands const& o) { return mean(o.a) + max(o.a) + mean(o.oldA) + max(o.oldA); });
    table.add("arange", [](Operands const& o) { return arange(-3, static_cast<int>(o.n)); });
    table.add("legacy arange", [](Operands const& o) { return Vector::arange(static_cast<int>(o.n)); });
    table.add("linspace", [](Operands const& o) { return linspace(0.0, 1.0, o.n); });
    table.add("legacy linspace", [](Operands const& o) { return Vector::linspace(0.0, 1.0, o.n); });
    table.add("zeros", [](Operands const& o) { return zeros(o.n); });
    table.add("legacy zeros", [](Operands const& o) { return zeros_old(o.n); });
    table.add("sort", [](Operands const& o) { return sort(o.a); });
    table.add("legacy sort", [](Operands const& o) {
        Vector v(o.oldA);
        v.sort();
        return v;
    });
    table.add("interp", [](Operands const& o) { return interp(o.a, o.breakpoints, o.b); });
    table.add("interp of a number", [](Operands const& o) { return interp(0.5, o.breakpoints, o.b); });
    table.add("legacy interp", [](Operands const& o) { return interp(o.oldA, o.oldBreakpoints, o.oldB); });
    table.add("floordiv", [](Operands const& o) { return floordiv(o.values[0], 0.3) + floordiv(o.n, 0.7); });
    table.add("legacy comparison", [](Operands const& o) {
        Vector v(o.oldA);
        std::vector<bool> const flags = v < 0.0;
        return static_cast<double>(std::count(flags.begin(), flags.end(), true));
    });
}

void addLinearAlgebra(Table& table) {
    table.add("gemm", [](Operands const& o) {
        return BLAS::gemm(Transposed, NoTranspose, 2.0, o.square, o.square).value();
    });
    table.add("gemv", [](Operands const& o) { return BLAS::gemv(NoTranspose, o.square, o.six).value(); });
    table.add("BLAS gesv", [](Operands const& o) {
        Matrix2 a(o.square);
        Vector2 x(o.six);
        BLAS::gesv(a, x).value();
        return x;
    });
    table.add("gesv", [](Operands const& o) {
        Matrix2 a(o.square);
        Vector2 x(o.six);
        LAPACK::gesv(a, x).value();
        return x;
    });
    table.add("gels", [](Operands const& o) {
        Matrix2 a(o.tall);
        Vector2 x(o.eight);
        LAPACK::gels(NoTranspose, a, x).value();
        return x;
    });
    table.add("gelsd", [](Operands const& o) {
        Matrix2 a(o.tall);
        Vector2 x(o.eight);
        LAPACK::gelsd(a, x, 1e-12).value();
        return x;
    });
    table.add("gglse", [](Operands const& o) {
        Matrix2 a(o.tall);
        Matrix2 b(o.wide);
        Vector2 c(o.eight);
        Vector2 d(o.two);
        return LAPACK::gglse(a, b, c, d).value();
    });
    table.add("an error's text", [](Operands const& o) {
        return BLAS::gemm(NoTranspose, NoTranspose, o.tall, o.tall).error().message().narrow();
    });
    table.add("a thrown error", [](Operands const& o) {
        Matrix2 a(o.tall);
        Vector2 x(o.eight);
        try {
            LAPACK::gesv(a, x).value();
        } catch (System::bad_expected_access<System::ErrorCode2> const& failure) {
            return static_cast<double>(failure.error().code());
        }
        return 0.0;
    });
    table.add("legacy gemm", [](Operands const& o) {
        ErrorCode error;
        return BLAS::gemm(NoTranspose, Transposed, o.oldSquare, o.oldSquare, error);
    });
    table.add("legacy gemv", [](Operands const& o) {
        ErrorCode error;
        return BLAS::gemv(NoTranspose, o.oldSquare, o.oldSix, error);
    });
    table.add("legacy products of elements and of tables", [](Operands const& o) {
        ErrorCode error;
        return o.oldSquare.elementwiseMultiply(o.oldSquare, error).multiply(o.oldSquare, error);
    });
    table.add("legacy gesv", [](Operands const& o) {
        ErrorCode error;
        Matrix a(o.oldSquare);
        Vector x(o.oldSix);
        LAPACK::gesv(a, x, error);
        return x;
    });
    table.add("legacy gels and gelsd", [](Operands const& o) {
        ErrorCode error;
        Matrix a(o.oldTall);
        Matrix b(o.oldTall);
        Vector x(o.oldEight);
        Vector y(o.oldEight);
        LAPACK::gels(NoTranspose, a, x, error);
        LAPACK::gelsd(b, y, error, 1e-12);
        return x * y;
    });
    table.add("legacy gglse", [](Operands const& o) {
        ErrorCode error;
        Matrix a(o.oldTall);
        Matrix b(o.oldWide);
        Vector c(o.oldEight);
        Vector d(o.oldTwo);
        return LAPACK::gglse(a, b, c, d, error);
    });
    table.add("a legacy error's text", [](Operands const& o) {
        ErrorCode error;
        BLAS::gemm(NoTranspose, NoTranspose, o.oldTall, o.oldTall, error);
        return error.message().narrow();
    });
    table.add("LinearAlgebraResult", [](Operands const& o) {
        LinearAlgebraResult const result(Matrix(o.oldTall), Matrix(o.oldTall), ErrorCode());
        return result.rss(1);
    });
}

void addSignals(Table& table) {
    table.add("transform", [](Operands const& o) { return FFT::fft_real(o.a).value(); });
    table.add("inverse transform", [](Operands const& o) { return FFT::ifft_real(o.z, o.n).value(); });
    table.add("a failed transform",
              [](Operands const&) { return static_cast<double>(FFT::fft_real(Vector2()).error().code()); });
    table.add("legacy transform and back", [](Operands const& o) {
        ErrorCode error;
        return FFT::ifft_real(FFT::fft_real(o.oldA, error), o.n, error);
    });
    table.add("windows", [](Operands const& o) {
        int const n = static_cast<int>(o.n);
        namespace Window = SignalProcessing::Window;
        return Vector{Window::hann(n), Window::hamming(n, false), Window::blackman(n),
                      Window::blackman(n, false)};
    });
    table.add(
        "random vector", [](Operands const& o) { return Random::uniform(0.0, 1.0, o.n); }, false);
    table.add(
        "random matrix", [](Operands const&) { return Random::uniform(0.0, 1.0, 5, 7); }, false);
}

} // namespace

std::vector<Operation> everyOperation(std::size_t n) {
    Table table(n);
    addContainers(table);
    addArithmetic(table);
    addFunctions(table);
    addLinearAlgebra(table);
    addSignals(table);
    return table.take();
}

bool isLongForm() {
    char const* const tests = std::getenv("TVNMATH_TESTS");
    return tests != nullptr && std::string_view(tests) == "all";
}

} // namespace Tervane::Math::Endurance
