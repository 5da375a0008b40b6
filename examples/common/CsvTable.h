#pragma once

/// @file
/// Columns of numbers from a CSV file, and rows of numbers as text for one.

#include "Failure.h"

#include <fmt/format.h>

#include <filesystem>
#include <functional>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace Examples {

/// The columns that were asked for, and what the comments say.
struct CsvTable {
    std::vector<std::string> names;              ///< of the columns that were asked for, in that order
    std::vector<std::vector<double>> columns;    ///< one for each name
    std::vector<std::size_t> lines;              ///< the line of the file that each row stands on
    std::map<std::string, std::string> comments; ///< `# key,value` lines before the header
};

/// Reads the columns called @p names; other columns may hold anything.
///
/// The first line that is neither empty nor a comment (`#`) names the columns. Every field of a wanted column
/// must be a finite number, and no line may have more fields than the header: that is how a decimal comma
/// shows. A byte-order mark is skipped. The file is read once from front to back, so it may be a pipe. On
/// failure @p place tells where.
Expected<CsvTable, ErrorCode2> readCsv(std::filesystem::path const& file,
                                       std::vector<std::string> const& names, Place& place);

/// The same for a caller that wants to see the header before it decides: @p choose gets the names of all
/// columns and returns those of the wanted ones.
Expected<CsvTable, ErrorCode2>
readCsv(std::filesystem::path const& file,
        std::function<std::vector<std::string>(std::vector<std::string> const& header)> const& choose,
        Place& place);

/// The finite number that @p text spells completely, or an error.
Expected<double, ErrorCode2> parseNumber(std::string const& text);

/// Appends numbers as one line, each with the fewest digits that give it back exactly.
template<class... Numbers>
void appendRow(std::string& text, Numbers... numbers) {
    char const* separator = "";
    auto const field = [&](auto number) {
        fmt::format_to(std::back_inserter(text), "{}{}", separator, number);
        separator = ",";
    };
    (field(numbers), ...);
    text += '\n';
}

} // namespace Examples
