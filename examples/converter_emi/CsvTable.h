#pragma once

/// @file
/// Reading columns of numbers from a CSV file.

#include "Failure.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace ConverterEmi {

/// The columns that were asked for, and what the comments say.
struct CsvTable {
    std::vector<std::vector<double>> columns;    ///< in the order in which they were asked for
    std::vector<std::size_t> lines;              ///< the line of the file that each row stands on
    std::map<std::string, std::string> comments; ///< `# key,value` lines before the header
};

/// The names in the header line of a file, in order.
Expected<std::vector<std::string>, ErrorCode2> readCsvHeader(std::filesystem::path const& file, Place& place);

/// Reads the columns called @p names; other columns may hold anything.
///
/// The first line that is neither empty nor a comment (`#`) names the columns. Every field of a wanted column
/// must be a finite number. On failure @p place tells where.
Expected<CsvTable, ErrorCode2> readCsv(std::filesystem::path const& file,
                                       std::vector<std::string> const& names, Place& place);

/// The number that @p text spells completely, or an error.
Expected<double, ErrorCode2> parseNumber(std::string const& text);

} // namespace ConverterEmi
