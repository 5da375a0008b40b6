#include "foundation/Shapes.h"
#include "legacy/Access.h"

#include <Math/Matrix.h>

#include <algorithm>
#include <cassert>
#include <numeric>
#include <utility>

namespace Tervane::Math {

namespace {

using Detail::LegacyAccess;
using Detail::MatrixData;
using Detail::RealArray;

using BlockRow = std::initializer_list<Matrix>;
using DataPointer = System::UniquePointer<System::ObjectData>;

// The elements come first, so that a length is refused before anything is allocated.
DataPointer dataOf(RealArray&& elements, Dimensions const& dimensions) {
    return DataPointer(new MatrixData(std::move(elements), dimensions));
}

DataPointer copyOf(AbstractDataTable const& table) {
    Dimensions const shape = table.size();
    RealArray elements(Detail::Uninitialised{}, Detail::elementCount(shape));
    for (std::size_t r = 0; r < shape.rows(); ++r)
        for (std::size_t c = 0; c < shape.columns(); ++c)
            elements[r + c * shape.rows()] = table[Index(r, c)];
    return dataOf(std::move(elements), shape);
}

/// How many elements a matrix has in its storage: those of its array, and those of its shape that resize()
/// has cut off.
std::size_t storedElements(MatrixData const& m) {
    return std::max(m.values.length(), Detail::elementCount(m.dimensions));
}

// What was cut off is copied as well: whoever goes by the shape finds it in a copy, too.
DataPointer copyOf(MatrixData const& m) {
    RealArray elements(m.values.data(), storedElements(m));
    elements.resize(m.values.length());
    return dataOf(std::move(elements), m.dimensions);
}

std::size_t widthOf(BlockRow blocks) {
    return std::accumulate(blocks.begin(), blocks.end(), std::size_t{0},
                           [](std::size_t total, Matrix const& block) { return total + block.columns(); });
}

std::size_t heightOf(BlockRow blocks) {
    return blocks.begin()->rows();
}

[[maybe_unused]] bool isConsistent(std::initializer_list<BlockRow> grid) {
    return std::all_of(grid.begin(), grid.end(), [grid](BlockRow blocks) {
        return blocks.size() != 0 && widthOf(blocks) == widthOf(*grid.begin())
               && std::all_of(blocks.begin(), blocks.end(),
                              [blocks](Matrix const& block) { return block.rows() == heightOf(blocks); });
    });
}

} // namespace

Matrix::Matrix() : BasicObject(DataPointer(new MatrixData)) {}

Matrix::Matrix(std::size_t rows, std::size_t columns, double const& fill)
    : Matrix(Dimensions(rows, columns), fill) {}

Matrix::Matrix(Dimensions const& dimensions, double const& fill)
    : BasicObject(dataOf(RealArray(Detail::elementCount(dimensions), fill), dimensions)) {}

Matrix::Matrix(AbstractDataTable const& table) : BasicObject(copyOf(table)) {}

Matrix::Matrix(Matrix const& other) : BasicObject(copyOf(LegacyAccess::data(other))) {}

Matrix::Matrix(Matrix&& other) noexcept = default;

Matrix& Matrix::operator=(Matrix const& other) {
    if (this == &other)
        return *this; // moved-from or not
    if (!LegacyAccess::hasData(*this))
        return *this = Matrix(other);
    MatrixData const& source = LegacyAccess::data(other);
    MatrixData& target = LegacyAccess::data(*this);
    target.values.assign(source.values.data(), storedElements(source));
    target.values.resize(source.values.length());
    target.dimensions = source.dimensions;
    return *this;
}

Matrix& Matrix::operator=(Matrix&& other) noexcept = default;

Matrix::~Matrix() = default;

double const& Matrix::operator[](Index const& i) const {
    MatrixData const& data = LegacyAccess::data(*this);
    return data.values[i.row() + i.column() * data.dimensions.rows()];
}

double& Matrix::operator[](Index const& i) {
    MatrixData& data = LegacyAccess::data(*this);
    return data.values[i.row() + i.column() * data.dimensions.rows()];
}

double* Matrix::operator[](std::size_t c) {
    MatrixData& data = LegacyAccess::data(*this);
    return data.values.data() + c * data.dimensions.rows();
}

double const* Matrix::operator[](std::size_t c) const {
    MatrixData const& data = LegacyAccess::data(*this);
    return data.values.data() + c * data.dimensions.rows();
}

double const* Matrix::data() const {
    return LegacyAccess::elements(*this).data();
}

double* Matrix::data() {
    return LegacyAccess::elements(*this).data();
}

void Matrix::set(std::size_t row, std::size_t column, double const& value) {
    MatrixData& data = LegacyAccess::data(*this);
    data.values[row + column * data.dimensions.rows()] = value;
}

std::size_t Matrix::columns() const {
    return LegacyAccess::data(*this).dimensions.columns();
}

std::size_t Matrix::rows() const {
    return LegacyAccess::data(*this).dimensions.rows();
}

Dimensions Matrix::size() const {
    return LegacyAccess::data(*this).dimensions;
}

MatrixLayout Matrix::majorOrder() const {
    return ColumnMajor;
}

Matrix Matrix::transposed() const {
    std::size_t const rowCount = rows();
    std::size_t const columnCount = columns();
    Matrix result(columnCount, rowCount, 0.0);
    AbstractDataTable const& source = *this;
    for (std::size_t r = 0; r < rowCount; ++r)
        for (std::size_t c = 0; c < columnCount; ++c)
            result.set(c, r, source[Index(r, c)]);
    return result;
}

// The reported shape stays, so every element keeps its flat position, those behind a new, nearer end
// included: resizing the array moves nothing else (compatibility C68). The shape is compared all the same:
// asking for the reported one must leave an array alone that an earlier call gave another length.
Matrix& Matrix::resize(std::size_t rows, std::size_t columns, double const& fill) {
    MatrixData& data = LegacyAccess::data(*this);
    Dimensions const asked(rows, columns);
    if (asked != data.dimensions)
        data.values.resize(Detail::elementCount(asked), fill);
    return *this;
}

Matrix Matrix::stack(std::initializer_list<std::initializer_list<Matrix>> blocks) {
    assert(isConsistent(blocks));
    if (blocks.size() == 0)
        return Matrix();
    std::size_t rowCount = 0;
    for (BlockRow const& blockRow : blocks)
        rowCount += heightOf(blockRow);
    Matrix result(rowCount, widthOf(*blocks.begin()), 0.0);
    Index origin;
    for (BlockRow const& blockRow : blocks) {
        origin.setColumn(0);
        for (Matrix const& block : blockRow) {
            for (std::size_t r = 0; r < block.rows(); ++r)
                for (std::size_t c = 0; c < block.columns(); ++c)
                    result[Index(origin.row() + r, origin.column() + c)] = block[Index(r, c)];
            origin.incrementColumn(block.columns());
        }
        origin.incrementRow(heightOf(blockRow));
    }
    return result;
}

} // namespace Tervane::Math
