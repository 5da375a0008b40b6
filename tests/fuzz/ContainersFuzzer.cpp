// Sequences of container operations of both generations against models made of standard vectors: lengths,
// shapes, orientations, elements and what a moved-from container is.

#include "fuzz/Fuzz.h"
#include "kit/SliceReference.h"

#include <Math/ComplexVector.h>
#include <Math/ComplexVector2.h>
#include <Math/Errors.h>
#include <Math/Matrix.h>
#include <Math/Matrix2.h>
#include <Math/Vector.h>
#include <Math/Vector2.h>
#include <Math/VectorView2.h>
#include <Math/ViewVector.h>

#include <algorithm>
#include <complex>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

namespace Tervane::Math::Fuzz {

namespace {

using TestKit::sameBits;

constexpr std::size_t poolSize = 3;
constexpr int longestSequence = 60;
constexpr std::size_t longestVector = 300;

struct VectorModel {
    std::vector<double> elements;
    VectorOrientation orientation = Column;
};

void requireAligned(double const* p, char const* what) {
    require(reinterpret_cast<std::uintptr_t>(p) % 64 == 0, what);
}

std::string textOf(std::vector<double> const& elements) {
    std::ostringstream stream;
    stream << "[ ";
    for (std::size_t i = 0; i < elements.size(); ++i)
        stream << (i == 0 ? "" : ", ") << elements[i];
    stream << " ]";
    return stream.str();
}

/// A slice whose positions are all inside, and what it selects.
struct Selection {
    int start;
    int stop;
    int step;
    std::vector<long> positions;
};

Selection selectionOf(Input& input, std::size_t n) {
    auto const bound = [&] {
        return static_cast<int>(input.below(2 * n + 8)) - static_cast<int>(n) - 4;
    };
    Selection s{bound(), bound(), static_cast<int>(input.below(9)) - 4, {}};
    if (s.step == 0)
        s.step = 5;
    s.positions = TestKit::slicePositions(s.start, s.stop, s.step, static_cast<long>(n));
    if (std::any_of(s.positions.begin(), s.positions.end(),
                    [n](long p) { return p < 0 || p >= static_cast<long>(n); }))
        return {0, static_cast<int>(n), 1,
                TestKit::slicePositions(0, static_cast<long>(n), 1, static_cast<long>(n))};
    return s;
}

std::vector<double> selected(std::vector<double> const& elements, Selection const& selection) {
    std::vector<double> result;
    for (long const position : selection.positions)
        result.push_back(elements[static_cast<std::size_t>(position)]);
    return result;
}

void requireVector(Vector2& v, VectorModel const& model) {
    std::size_t const n = model.elements.size();
    require(sameBits(TestKit::elementsOf(v), model.elements), "a vector's elements");
    require(v.orientation() == model.orientation, "a vector's orientation");
    require(v.rows() == (model.orientation == Column ? n : 1), "a vector's rows");
    require(v.columns() == (model.orientation == Row ? n : 1), "a vector's columns");
    require(v.size() == (model.orientation == Row ? Dimensions(1, n) : Dimensions(n, 1)), "a vector's size");
    requireAligned(v.data(), "a vector is aligned");
    if (n != 0)
        require(&v.front() == v.data() && &v.back() == v.data() + (n - 1), "the ends of a vector");
}

void currentVectors(Input& input) {
    std::array<Vector2, poolSize> vectors;
    std::array<VectorModel, poolSize> models;
    for (int step = 0; step < longestSequence && !input.isUsedUp(); ++step) {
        std::size_t const i = input.below(poolSize);
        std::size_t const j = input.below(poolSize);
        Vector2& v = vectors[i];
        Vector2& other = vectors[j];
        VectorModel& model = models[i];
        switch (input.below(14)) {
        case 0:
            model = {std::vector<double>(input.below(40)), Column};
            v = Vector2(model.elements.size());
            break;
        case 1: {
            double const value = input.value();
            model = {std::vector<double>(input.below(40), value), Column};
            v = Vector2(model.elements.size(), value);
            break;
        }
        case 2: {
            model = {input.values(input.below(40)), input.flag() ? Row : Column};
            v = Vector2(VectorView2(model.elements.data(), model.elements.size(), model.orientation));
            break;
        }
        case 3:
            model = {input.values(input.below(40)), Column};
            v = Vector2(model.elements.data(), model.elements.size());
            break;
        case 4:
            v = other;
            model = models[j];
            break;
        case 5: // the source keeps its orientation, and a vector moved to itself its elements
            v = std::move(other);
            if (i != j) {
                model = models[j];
                models[j].elements.clear();
            }
            break;
        case 6: {
            Vector2 taken(std::move(other));
            VectorModel const moved = models[j];
            models[j].elements.clear();
            v = taken;
            model = moved;
            break;
        }
        case 7: {
            std::size_t const room = input.below(longestVector);
            double const* const before = v.data();
            v.reserve(room);
            require(room > model.elements.size() || v.data() == before,
                    "reserving less than there is does nothing");
            break;
        }
        case 8: {
            std::size_t const n = input.below(longestVector);
            double const value = input.value();
            require(v.resize(n, value).has_value(), "a resize");
            model.elements.resize(n, value);
            break;
        }
        case 9: // the fill is an element of the vector
            if (!model.elements.empty()) {
                std::size_t const n = input.below(longestVector);
                std::size_t const k = input.below(model.elements.size());
                require(v.resize(n, v[k]).has_value(), "a resize");
                model.elements.resize(n, double{model.elements[k]});
            }
            break;
        case 10: {
            Selection const s = selectionOf(input, model.elements.size());
            v = v[makeSlice(s.start, s.stop, s.step)];
            model = {selected(model.elements, s), Column};
            break;
        }
        case 11: {
            auto const text = v.toString();
            require(text.has_value() && text->narrow() == textOf(model.elements), "a vector's text");
            break;
        }
        case 12:
            if (!model.elements.empty()) {
                std::size_t const k = input.below(model.elements.size());
                v[k] = model.elements[k] = input.value();
            }
            break;
        default: {
            auto const tooLong = v.resize(std::size_t{1} << 61, 0.0);
            require(!tooLong && tooLong.error() == System::ErrorCode2(-1, System::system_error_category()),
                    "a resize beyond the limit");
        }
        }
        for (std::size_t k = 0; k < poolSize; ++k)
            requireVector(vectors[k], models[k]);
    }
}

void requireVector(Vector const& v, VectorModel const& model) {
    std::size_t const n = model.elements.size();
    require(sameBits(TestKit::elementsOf(v), model.elements), "a legacy vector's elements");
    require(v.orientation() == model.orientation, "a legacy vector's orientation");
    require(v.rows() == (model.orientation == Column ? n : 1), "a legacy vector's rows");
    require(v.columns() == (model.orientation == Row ? n : 1), "a legacy vector's columns");
    require(v.size() == (model.orientation == Row ? Dimensions(1, n) : Dimensions(n, 1)),
            "a legacy vector's size");
    require(v.begin() == v.data() && v.end() == v.data() + n, "the ends of a legacy vector");
    requireAligned(v.data(), "a legacy vector is aligned");
    for (std::size_t k = 0; k < n; k += 7) {
        Index const index = model.orientation == Column ? Index(k, 0) : Index(0, k);
        require(&v[index] == &v[k] && &v.value(k) == &v[k] && &v.at(index) == &v[k],
                "one element, whatever the access");
    }
    bool hasThrown = false;
    try {
        static_cast<void>(v.at(v.rows(), v.columns()));
    } catch (std::out_of_range const&) {
        hasThrown = true;
    }
    require(hasThrown, "at() beyond the end");
}

void legacyVectors(Input& input) {
    std::array<Vector, poolSize> vectors;
    std::array<std::optional<VectorModel>, poolSize> models; // none: moved from
    models.fill(VectorModel{});
    for (int step = 0; step < longestSequence && !input.isUsedUp(); ++step) {
        std::size_t const i = input.below(poolSize);
        std::size_t const j = input.below(poolSize);
        for (std::size_t const k : {i, j})
            if (!models[k]) {
                vectors[k] = Vector();
                models[k] = VectorModel{};
            }
        Vector& v = vectors[i];
        Vector& other = vectors[j];
        VectorModel& model = *models[i];
        switch (input.below(15)) {
        case 0: {
            double const fill = input.value();
            model = {std::vector<double>(input.below(40), fill), Column};
            v = Vector(model.elements.size(), fill);
            break;
        }
        case 1: {
            std::size_t const rows = input.below(4);
            std::size_t const columns = input.below(30);
            v = Vector(Dimensions(rows, columns), 7.0); // the fill is not used
            model = {std::vector<double>(std::max(rows, columns)), columns <= 1 ? Column : Row};
            break;
        }
        case 2:
            model = {input.values(input.below(40)), Column};
            v = input.flag() ? Vector(model.elements) : Vector(model.elements.data(), model.elements.size());
            break;
        case 3: {
            // A view of length 0 gives its length as 1, so there is always an element to read.
            model = {input.values(1 + input.below(40)), input.flag() ? Row : Column};
            v = Vector(ViewVector(model.elements.data(), model.elements.size(), model.orientation));
            break;
        }
        case 4:
            v = other;
            model = *models[j];
            break;
        case 5:
            v = std::move(other);
            if (i != j) {
                model = *models[j];
                models[j].reset();
            }
            break;
        case 6: {
            Vector taken(std::move(other));
            VectorModel const moved = *models[j];
            models[j].reset();
            if (models[i]) {
                v = taken;
                models[i] = moved;
            }
            break;
        }
        case 7:
            v.reserve(input.below(longestVector));
            break;
        case 8: {
            std::size_t const n = input.below(longestVector);
            double const fill = input.value();
            v.resize(n, fill);
            model.elements.resize(n, fill);
            break;
        }
        case 9:
            if (!model.elements.empty()) {
                std::size_t const n = input.below(longestVector);
                std::size_t const k = input.below(model.elements.size());
                v.resize(n, v[k]);
                model.elements.resize(n, double{model.elements[k]});
            }
            break;
        case 10: {
            Selection const s = selectionOf(input, model.elements.size());
            v = v[makeSlice(s.start, s.stop, s.step)];
            model = {selected(model.elements, s), Column};
            break;
        }
        case 11:
            if (model.elements.size() + models[j]->elements.size() <= longestVector) {
                std::vector<double> both = model.elements;
                both.insert(both.end(), models[j]->elements.begin(), models[j]->elements.end());
                v = Vector{v, other};
                model = {both, Column};
            }
            break;
        case 12: {
            ViewVector const all(v);
            std::size_t const from = input.below(model.elements.size() + 1);
            std::size_t const n = input.below(model.elements.size() - from + 1);
            ViewVector const part = all.sliced(from, n);
            require(part.data() == v.data() + from && part.orientation() == v.orientation(),
                    "a part of a view");
            require(part.length() == std::max(part.rows(), part.columns())
                        && reinterpret_cast<std::uintptr_t>(part.end())
                               == reinterpret_cast<std::uintptr_t>(part.begin())
                                      + part.length() * sizeof(double),
                    "a view's length");
            require(n == 0 || part.length() == n, "the length of a part");
            break;
        }
        case 13:
            if (!model.elements.empty()) {
                std::size_t const k = input.below(model.elements.size());
                v[k] = model.elements[k] = input.value();
            }
            break;
        default: {
            bool hasThrown = false;
            try {
                v.resize(std::size_t{1} << 61, 0.0);
            } catch (std::length_error const&) {
                hasThrown = true;
            }
            require(hasThrown, "a resize beyond the limit");
        }
        }
        for (std::size_t k = 0; k < poolSize; ++k)
            if (models[k])
                requireVector(vectors[k], *models[k]);
    }
}

struct MatrixModel {
    std::size_t rows = 0;
    std::size_t columns = 0;
    std::vector<double> elements; // column after column
};

template<class AnyMatrix>
void requireMatrix(AnyMatrix& m, MatrixModel const& model) {
    require(m.rows() == model.rows && m.columns() == model.columns, "a matrix's shape");
    require(m.size() == Dimensions(model.rows, model.columns), "a matrix's size");
    std::span<double const> const elements(m.data(), model.elements.size());
    require(sameBits(elements, model.elements), "a matrix's elements");
    requireAligned(m.data(), "a matrix is aligned");
    for (std::size_t c = 0; c < model.columns; ++c)
        for (std::size_t r = 0; r < model.rows; ++r)
            if (r + c * model.rows < model.elements.size())
                require(&m[Index(r, c)] == m.data() + r + c * model.rows && &m[c][r] == &m[Index(r, c)],
                        "one element, whatever the access");
}

MatrixModel matrixModelOf(Input& input) {
    MatrixModel model{input.below(6), input.below(6), {}};
    model.elements = input.values(model.rows * model.columns);
    return model;
}

Matrix legacyMatrixOf(MatrixModel const& model) {
    Matrix m(model.rows, model.columns, 0.0);
    for (std::size_t c = 0; c < model.columns; ++c)
        for (std::size_t r = 0; r < model.rows; ++r)
            m.set(r, c, model.elements[r + c * model.rows]);
    return m;
}

void currentMatrices(Input& input) {
    std::array<Matrix2, poolSize> matrices;
    std::array<MatrixModel, poolSize> models;
    for (int step = 0; step < longestSequence && !input.isUsedUp(); ++step) {
        std::size_t const i = input.below(poolSize);
        std::size_t const j = input.below(poolSize);
        MatrixModel& model = models[i];
        switch (input.below(5)) {
        case 0: {
            double const value = input.value();
            model = {input.below(12), input.below(12), {}};
            model.elements.assign(model.rows * model.columns, value);
            matrices[i] = input.flag() ? Matrix2(model.rows, model.columns, value)
                                       : Matrix2(Dimensions(model.rows, model.columns), value);
            break;
        }
        case 1:
            matrices[i] = matrices[j];
            model = models[j];
            break;
        case 2: // the source keeps its shape
            matrices[i] = std::move(matrices[j]);
            if (i != j) {
                model = models[j];
                models[j].elements.clear();
                require(matrices[j].data() == nullptr, "a moved-from matrix has no data");
                matrices[j] = Matrix2();
                models[j] = {};
            }
            break;
        case 3:
            if (!model.elements.empty()) {
                std::size_t const k = input.below(model.elements.size());
                matrices[i][Index(k % model.rows, k / model.rows)] = model.elements[k] = input.value();
            }
            break;
        default:
            if (model.columns != 0) {
                std::size_t const c = input.below(model.columns);
                VectorView2 view(matrices[i], c);
                require(view.data() == matrices[i].data() + c * model.rows && view.length() == model.rows
                            && view.orientation() == Column,
                        "a view of a column");
            }
        }
        for (std::size_t k = 0; k < poolSize; ++k)
            requireMatrix(matrices[k], models[k]);
    }
}

/// The grid {{p, q}, {r, s}}, each block of any shape that fits.
void stackOfFour(Input& input) {
    std::size_t const top = input.below(4);
    std::size_t const bottom = input.below(4);
    std::size_t const left = input.below(4);
    std::size_t const right = input.below(4);
    auto const block = [&](std::size_t rows, std::size_t columns) {
        return MatrixModel{rows, columns, input.values(rows * columns)};
    };
    MatrixModel const p = block(top, left);
    MatrixModel const q = block(top, right);
    MatrixModel const r = block(bottom, left);
    MatrixModel const s = block(bottom, right);
    Matrix stacked =
        Matrix::stack({{legacyMatrixOf(p), legacyMatrixOf(q)}, {legacyMatrixOf(r), legacyMatrixOf(s)}});
    MatrixModel expected{top + bottom, left + right, {}};
    for (std::size_t c = 0; c < left + right; ++c)
        for (std::size_t row = 0; row < top + bottom; ++row) {
            MatrixModel const& from = row < top ? (c < left ? p : q) : (c < left ? r : s);
            expected.elements.push_back(
                from.elements[(row < top ? row : row - top) + (c < left ? c : c - left) * from.rows]);
        }
    requireMatrix(stacked, expected);
}

MatrixModel transposedModel(MatrixModel const& model) {
    MatrixModel result{model.columns, model.rows, {}};
    for (std::size_t r = 0; r < model.rows; ++r)
        for (std::size_t c = 0; c < model.columns; ++c)
            result.elements.push_back(model.elements[r + c * model.rows]);
    return result;
}

/// A resize keeps the shape and changes the number of elements; afterwards only the array counts, until
/// another matrix is assigned.
void legacyMatrices(Input& input) {
    std::array<Matrix, poolSize> matrices;
    std::array<MatrixModel, poolSize> models;
    for (int step = 0; step < longestSequence && !input.isUsedUp(); ++step) {
        std::size_t const i = input.below(poolSize);
        std::size_t const j = input.below(poolSize);
        Matrix& m = matrices[i];
        MatrixModel& model = models[i];
        bool const isWhole = model.elements.size() >= model.rows * model.columns;
        switch (input.below(9)) {
        case 0:
            model = matrixModelOf(input);
            m = legacyMatrixOf(model);
            break;
        case 1: {
            double const fill = input.value();
            model = {input.below(8), input.below(8), {}};
            model.elements.assign(model.rows * model.columns, fill);
            m = Matrix(Dimensions(model.rows, model.columns), fill);
            break;
        }
        case 2:
            m = matrices[j];
            model = models[j];
            break;
        case 3:
            m = std::move(matrices[j]);
            if (i != j) {
                model = models[j];
                matrices[j] = Matrix();
                models[j] = {};
            }
            break;
        case 4: {
            std::size_t const rows = input.below(8);
            std::size_t const columns = input.below(8);
            double const fill = input.value();
            require(&m.resize(rows, columns, fill) == &m, "a resize gives the matrix");
            if (rows != model.rows || columns != model.columns)
                model.elements.resize(rows * columns, fill);
            break;
        }
        case 5:
            if (isWhole && model.elements.size() == model.rows * model.columns) {
                m = m.transposed();
                model = transposedModel(model);
            }
            break;
        case 6:
            stackOfFour(input);
            break;
        case 7:
            if (isWhole && model.elements.size() == model.rows * model.columns) {
                Matrix copy((static_cast<AbstractDataTable const&>(m)));
                requireMatrix(copy, model);
                require(m.isSquare() == (model.rows == model.columns && model.rows != 0), "a square matrix");
                if (model.columns != 0 && model.rows != 0) {
                    std::size_t const c = input.below(model.columns);
                    ViewVector const view(m, c);
                    require(view.data() == m.data() + c * model.rows && view.length() == model.rows,
                            "a view of a column");
                }
            }
            break;
        default:
            if (model.rows * model.columns != 0 && isWhole) {
                std::size_t const k = input.below(model.rows * model.columns);
                model.elements[k] = input.value();
                m.set(k % model.rows, k / model.rows, model.elements[k]);
            }
        }
        for (std::size_t k = 0; k < poolSize; ++k)
            requireMatrix(matrices[k], models[k]);
    }
}

void complexVectors(Input& input) {
    using Complex = std::complex<double>;
    ComplexVector2 current;
    ComplexVector legacy;
    std::vector<double> model; // interleaved
    for (int step = 0; step < longestSequence && !input.isUsedUp(); ++step) {
        switch (input.below(6)) {
        case 0: {
            model = input.values(2 * input.below(20));
            auto made = ComplexVector2::fromData(model.data(), model.size());
            require(made.has_value(), "pairs make a complex vector");
            current = *std::move(made);
            legacy.setData(model.data(), model.size() / 2);
            break;
        }
        case 1: {
            model.assign(2 * input.below(40), 0.0);
            current = ComplexVector2(model.size() / 2);
            legacy = ComplexVector(model.size() / 2);
            break;
        }
        case 2: {
            std::vector<double> const odd(1 + 2 * input.below(5));
            auto const made = ComplexVector2::fromData(odd.data(), odd.size());
            require(!made && made.error() == System::ErrorCode2(OddComplexDataLength),
                    "an odd number of parts");
            break;
        }
        case 3: {
            std::ostringstream stream;
            stream << "[ ";
            for (std::size_t k = 0; k < model.size(); k += 2)
                stream << (k == 0 ? "" : ", ") << Complex(model[k], model[k + 1]);
            stream << " ]";
            auto const text = current.toString();
            require(text.has_value() && text->narrow() == stream.str(), "a complex vector's text");
            break;
        }
        case 4: {
            legacy.reserve(input.below(100));
            ComplexVector copy(legacy);
            legacy = std::move(copy);
            ComplexVector2 const copy2(current);
            current = copy2;
            break;
        }
        default: {
            std::size_t const n = model.size() / 2;
            std::size_t const from = input.below(n + 1);
            bool const isRest = input.flag();
            std::size_t const count = isRest ? n - from : input.below(n - from + 1);
            ComplexVectorView2 view =
                current.view().sliced(from, isRest ? std::numeric_limits<std::size_t>::max() : count);
            require(view.data() == current.data() + 2 * from && view.length() == count
                        && view.orientation() == Column,
                    "a part of a complex view");
            if (n != 0) {
                std::size_t const k = input.below(n);
                Complex const z(input.value(), input.value());
                legacy[k] = z;
                current.data()[2 * k] = model[2 * k] = z.real();
                current.data()[2 * k + 1] = model[2 * k + 1] = z.imag();
            }
        }
        }
        require(sameBits(TestKit::partsOf(current), model), "a complex vector's elements");
        require(sameBits(TestKit::partsOf(legacy), model), "a legacy complex vector's elements");
        require(legacy.end() - legacy.begin() == static_cast<std::ptrdiff_t>(model.size() / 2),
                "the ends of a legacy one");
        require(current.size() == Dimensions(model.size() / 2, 1), "a complex vector's size");
    }
}

} // namespace

void fuzzContainers(Input& input) {
    switch (input.below(5)) {
    case 0:
        currentVectors(input);
        break;
    case 1:
        legacyVectors(input);
        break;
    case 2:
        currentMatrices(input);
        break;
    case 3:
        legacyMatrices(input);
        break;
    default:
        complexVectors(input);
    }
}

} // namespace Tervane::Math::Fuzz
