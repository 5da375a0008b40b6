#pragma once

/// @file
/// Tables that a caller might write: each derives from an abstract base and supplies nothing but what the
/// base leaves open. They note what is asked of them.

#include <Math/AbstractMatrix.h>
#include <Math/AbstractVector.h>
#include <Math/Vector.h>
#include <Math/ViewVector.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Tervane::Math::LegacyTest {

/// Keeps its elements row after row and answers for a table; `Base` is one of the abstract bases.
template<class Base>
class RowMajor : public Base {
public:
    RowMajor(std::size_t rows, std::size_t columns, std::vector<double> elements)
        : _rows(rows), _columns(columns), _elements(std::move(elements)) {}

    using Base::operator[];

    double const& operator[](Index const& i) const override {
        note("element " + std::to_string(i.row()) + "," + std::to_string(i.column()));
        return _elements[i.row() * _columns + i.column()];
    }

    std::size_t columns() const override {
        note("columns");
        return _columns;
    }

    double const* data() const override {
        note("data");
        return _elements.data();
    }

    std::size_t rows() const override {
        note("rows");
        return _rows;
    }

    /// What was asked for since the last call, in order.
    std::vector<std::string> takeCalls() const { return std::exchange(_calls, {}); }

protected:
    void note(std::string call) const { _calls.push_back(std::move(call)); }

private:
    std::size_t _rows;
    std::size_t _columns;
    std::vector<double> _elements;
    mutable std::vector<std::string> _calls;
};

using OwnTable = RowMajor<AbstractDataTable>;
using OwnVector = RowMajor<AbstractVector>;

class OwnMatrix : public RowMajor<AbstractMatrix> {
public:
    using RowMajor::RowMajor;
    MatrixLayout majorOrder() const override { return static_cast<MatrixLayout>(0); }
};

/// A row that owns the given values. Not simply a copy of a view of them: an empty view has length 1.
inline Vector rowOf(std::vector<double> const& values) {
    double const first = 0.0;
    Vector row(ViewVector(&first, 1, Row));
    row.resize(values.size());
    std::copy(values.begin(), values.end(), row.begin());
    return row;
}

} // namespace Tervane::Math::LegacyTest
