#pragma once

/// @file
/// Every family of operations of both generations as calls that give numbers, for tests that call everything
/// often or from many threads.

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace Tervane::Math::Endurance {

/// One call on operands that all calls share and none changes.
struct Operation {
    std::string name;
    std::function<std::vector<double>()> run; ///< what the call gave, as plain numbers
    bool isReproducible;                      ///< whether every call gives the same bits, under every policy
};

/// The operations on vectors of `n` elements and matrices of a few rows.
std::vector<Operation> everyOperation(std::size_t n);

/// Whether the tests run in their long form, which scripts/test --all asks for.
bool isLongForm();

} // namespace Tervane::Math::Endurance
