#include "CsvTable.h"

#include <csv.h>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <memory>
#include <optional>

namespace ConverterEmi {

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
            return Failure::FileNotReadable;
        }
        auto const found = nextRow(header, place);
        if (!found) {
            return found.error();
        }
        if (!*found) {
            place.line = 0;
            return Failure::FileEmpty;
        }
        return {};
    }

    /// Reads the next line that holds a row; false at the end of the file.
    Expected<bool, ErrorCode2> nextRow(std::vector<std::string>& fields, Place& place) {
        std::string line;
        while (std::getline(_stream, line)) {
            place.line = ++_line;
            if (line.starts_with('#')) {
                noteComment(line);
                continue;
            }
            if (line.find_first_not_of(" \t\r") == std::string::npos) {
                continue;
            }
            auto split = _splitter.split(line);
            if (!split) {
                return Failure::LineMalformed;
            }
            fields = std::move(*split);
            return true;
        }
        if (_stream.bad()) {
            return Failure::FileNotReadable;
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

} // namespace

Expected<double, ErrorCode2> parseNumber(std::string const& text) {
    double number = 0.0;
    char const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || !std::isfinite(number)) {
        return Failure::FieldNotNumber;
    }
    return number;
}

Expected<std::vector<std::string>, ErrorCode2> readCsvHeader(std::filesystem::path const& file,
                                                             Place& place) {
    CsvFile table;
    if (auto const opened = table.open(file, place); !opened) {
        return opened.error();
    }
    return table.header;
}

Expected<CsvTable, ErrorCode2> readCsv(std::filesystem::path const& file,
                                       std::vector<std::string> const& names, Place& place) {
    CsvFile table;
    if (auto const opened = table.open(file, place); !opened) {
        return opened.error();
    }

    std::vector<std::size_t> positions;
    for (std::string const& name : names) {
        auto const found = std::ranges::find(table.header, name);
        if (found == table.header.end()) {
            place.detail = fmt::format("no '{}' among: {}", name, fmt::join(table.header, ", "));
            return Failure::ColumnMissing;
        }
        positions.push_back(static_cast<std::size_t>(found - table.header.begin()));
    }

    CsvTable result{std::vector<std::vector<double>>(names.size()), {}, table.comments};
    std::vector<std::string> fields;
    while (true) {
        auto const found = table.nextRow(fields, place);
        if (!found) {
            return found.error();
        }
        if (!*found) {
            place.line = 0;
            return result;
        }
        for (std::size_t i = 0; i < names.size(); ++i) {
            place.column = positions[i] + 1;
            if (positions[i] >= fields.size()) {
                place.detail = names[i];
                return Failure::FieldMissing;
            }
            std::string const& field = fields[positions[i]];
            auto const number = parseNumber(field);
            if (!number) {
                place.detail = fmt::format("{}: '{}'", names[i], field);
                return number.error();
            }
            result.columns[i].push_back(*number);
        }
        place.column = 0;
        result.lines.push_back(place.line);
    }
}

} // namespace ConverterEmi
