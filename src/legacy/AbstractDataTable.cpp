#include <Math/AbstractDataTable.h>

#include <stdexcept>

namespace Tervane::Math {

AbstractDataTable::~AbstractDataTable() = default;

Dimensions AbstractDataTable::size() const {
    return Dimensions(rows(), columns());
}

bool AbstractDataTable::isValidIndex(Index const& i) const {
    return isValidIndex(i.row(), i.column());
}

bool AbstractDataTable::isValidIndex(std::size_t row, std::size_t column) const {
    return row < rows() && column < columns();
}

double const& AbstractDataTable::at(Index const& i) const {
    if (!isValidIndex(i))
        throw std::out_of_range("data table index out of range");
    return (*this)[i];
}

double const& AbstractDataTable::at(std::size_t row, std::size_t column) const {
    return at(Index(row, column));
}

} // namespace Tervane::Math
