#include "CsvTable.h"

#include <csv.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <optional>

namespace Examples {

namespace {

/// Splits lines into fields with libcsv, line by line, so that every field has a line number.
class FieldSplitter {
public:
    FieldSplitter() { csv_init(&_parser, CSV_STRICT | CSV_STRICT_FINI | CSV_APPEND_NULL); }
    FieldSplitter(FieldSplitter const&) = delete;
    FieldSplitter& operator=(FieldSplitter const&) = delete;
    ~FieldSplitter() { csv_free(&_parser); }

    /// The fields of @p line, or nothing when its quotes do not match.
    std::optional<std::vector<std::string>> split(std::string const& line) {
        std::vector<std::string> fields;
        bool const wellFormed =
            csv_parse(&_parser, line.data(), line.size(), appendField, nullptr, &fields) == line.size()
            && csv_fini(&_parser, appendField, nullptr, &fields) == 0;
        if (!wellFormed) {
            return std::nullopt;
        }
        return fields;
    }

private:
    static void appendField(void* text, std::size_t length, void* fields) {
        static_cast<std::vector<std::string>*>(fields)->emplace_back(static_cast<char const*>(text), length);
    }

    csv_parser _parser;
};

/// A file whose table starts after comments.
class CsvFile {
public:
    /// Opens the file and reads up to its header.
    Expected<void, ErrorCode2> open(std::filesystem::path const& file, Place& place) {
        place = {file.string(), 0, 0, {}};
        _stream.open(file);
        if (!_stream || std::filesystem::is_directory(file)) {
            return FileFailure::FileNotReadable;
        }
        auto const found = nextRow(header, place);
        if (!found) {
            return found.error();
        }
        if (!*found) {
            place.line = 0;
            return FileFailure::FileEmpty;
        }
        return {};
    }

    /// Reads the next line that holds a row; false at the end of the file.
    Expected<bool, ErrorCode2> nextRow(std::vector<std::string>& fields, Place& place) {
        constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
        std::string line;
        while (std::getline(_stream, line)) {
            place.line = ++_line;
            if (_line == 1 && line.starts_with(byteOrderMark)) {
                line.erase(0, byteOrderMark.size());
            }
            if (line.starts_with('#')) {
                noteComment(line);
                continue;
            }
            if (line.find_first_not_of(" \t\r") == std::string::npos) {
                continue;
            }
            auto split = _splitter.split(line);
            if (!split) {
                return FileFailure::LineMalformed;
            }
            fields = std::move(*split);
            return true;
        }
        if (_stream.bad()) {
            return FileFailure::FileNotReadable;
        }
        return false;
    }

    std::vector<std::string> header;
    std::map<std::string, std::string> comments;

private:
    void noteComment(std::string const& line) {
        auto const comment = _splitter.split(line.substr(1));
        if (comment && comment->size() == 2) {
            comments[comment->front()] = comment->back();
        }
    }

    std::ifstream _stream;
    FieldSplitter _splitter;
    std::size_t _line = 0;
};

/// Where each of @p names stands in the header.
Expected<std::vector<std::size_t>, ErrorCode2>
findColumns(std::vector<std::string> const& header, std::vector<std::string> const& names, Place& place) {
    std::vector<std::size_t> positions;
    for (std::string const& name : names) {
        auto const found = std::ranges::find(header, name);
        if (found == header.end()) {
            place.detail = fmt::format("no '{}' among: {}", name, fmt::join(header, ", "));
            return FileFailure::ColumnMissing;
        }
        positions.push_back(static_cast<std::size_t>(found - header.begin()));
    }
    return positions;
}

/// Appends one row's numbers to the columns.
Expected<void, ErrorCode2> takeRow(std::vector<std::string> const& fields, std::size_t width,
                                   std::vector<std::size_t> const& positions, CsvTable& table, Place& place) {
    if (fields.size() > width) {
        place.detail = fmt::format("{} instead of {}", fields.size(), width);
        return FileFailure::FieldSurplus;
    }
    for (std::size_t i = 0; i < positions.size(); ++i) {
        place.column = positions[i] + 1;
        if (positions[i] >= fields.size()) {
            place.detail = table.names[i];
            return FileFailure::FieldMissing;
        }
        std::string const& field = fields[positions[i]];
        auto const number = parseNumber(field);
        if (!number) {
            place.detail = fmt::format("{}: '{}'", table.names[i], field);
            return number.error();
        }
        table.columns[i].push_back(*number);
    }
    place.column = 0;
    table.lines.push_back(place.line);
    return {};
}

} // namespace

Expected<double, ErrorCode2> parseNumber(std::string const& text) {
    double number = 0.0;
    char const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || !std::isfinite(number)) {
        return FileFailure::FieldNotNumber;
    }
    return number;
}

Expected<CsvTable, ErrorCode2>
readCsv(std::filesystem::path const& file,
        std::function<std::vector<std::string>(std::vector<std::string> const& header)> const& choose,
        Place& place) {
    CsvFile csv;
    if (auto const opened = csv.open(file, place); !opened) {
        return opened.error();
    }
    CsvTable table;
    table.names = choose(csv.header);
    table.columns.resize(table.names.size());
    table.comments = csv.comments;
    auto const positions = findColumns(csv.header, table.names, place);
    if (!positions) {
        return positions.error();
    }

    std::vector<std::string> fields;
    while (true) {
        auto const found = csv.nextRow(fields, place);
        if (!found) {
            return found.error();
        }
        if (!*found) {
            place.line = 0;
            return table;
        }
        if (auto const taken = takeRow(fields, csv.header.size(), *positions, table, place); !taken) {
            return taken.error();
        }
    }
}

Expected<CsvTable, ErrorCode2> readCsv(std::filesystem::path const& file,
                                       std::vector<std::string> const& names, Place& place) {
    return readCsv(
        file, [&](auto const&) { return names; }, place);
}

} // namespace Examples
