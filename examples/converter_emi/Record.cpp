#include "Record.h"

#include "CsvTable.h"

#include <Math/Generators.h>

#include <fmt/format.h>

#include <algorithm>

namespace ConverterEmi {

namespace {

// Fewer samples than this are no waveform; more do not fit the library's 32-bit ranges and windows.
constexpr std::size_t fewestSamples = 16;
constexpr std::size_t mostSamples = std::size_t(1) << 28;

Vector2 toVector(std::vector<double> const& values) {
    return Vector2(values.data(), values.size());
}

/// Times of evenly spaced samples, from the interval that the file's comments state.
Expected<Vector2, ErrorCode2> timesFromComment(CsvTable const& table, std::string const& timeColumn,
                                               Place& place) {
    auto const comment = table.comments.find("sample_interval_s");
    if (comment == table.comments.end()) {
        place.detail = fmt::format("no '{}'", timeColumn);
        return Failure::SampleIntervalMissing;
    }
    auto const interval = parseNumber(comment->second);
    place.detail = fmt::format("sample_interval_s: '{}'", comment->second);
    if (!interval) {
        return interval.error();
    }
    if (*interval <= 0.0) {
        return Failure::SampleIntervalNotPositive;
    }
    place.detail.clear();
    return Tervane::Math::arange(static_cast<int>(table.lines.size())) * *interval;
}

Expected<void, ErrorCode2> checkIncreasing(CsvTable const& table, std::vector<double> const& time,
                                           std::string const& name, Place& place) {
    auto const fault = std::ranges::adjacent_find(time, std::ranges::greater_equal());
    if (fault == time.end()) {
        return {};
    }
    place.line = table.lines[static_cast<std::size_t>(fault - time.begin()) + 1];
    place.detail = fmt::format("{}: {} s after {} s", name, *(fault + 1), *fault);
    return Failure::TimeNotIncreasing;
}

} // namespace

Expected<Record, ErrorCode2> readRecord(RecordSource const& source, Place& place) {
    auto const header = readCsvHeader(source.file, place);
    if (!header) {
        return header.error();
    }
    bool const hasTime = std::ranges::find(*header, source.timeColumn) != header->end();
    bool const hasCapacitor = !source.voltageColumn.empty();

    std::vector<std::string> names{source.signalColumn};
    if (hasCapacitor) {
        names.insert(names.end(), {source.voltageColumn, source.currentColumn});
    }
    if (hasTime) {
        names.push_back(source.timeColumn);
    }
    auto const table = readCsv(source.file, names, place);
    if (!table) {
        return table.error();
    }
    if (table->lines.size() < fewestSamples) {
        place.detail = fmt::format("{} where {} are the least", table->lines.size(), fewestSamples);
        return Failure::TooFewSamples;
    }
    if (table->lines.size() > mostSamples) {
        return Failure::TooManySamples;
    }

    Record record;
    if (hasTime) {
        std::vector<double> const& time = table->columns.back();
        if (auto const checked = checkIncreasing(*table, time, source.timeColumn, place); !checked) {
            return checked.error();
        }
        record.time = toVector(time);
    } else {
        auto time = timesFromComment(*table, source.timeColumn, place);
        if (!time) {
            return time.error();
        }
        record.time = std::move(*time);
    }
    record.signal = toVector(table->columns[0]);
    record.isCurrent = source.signalColumn.ends_with("_A");
    if (hasCapacitor) {
        record.capacitor = CapacitorRecord{toVector(table->columns[1]), toVector(table->columns[2])};
    }
    return record;
}

} // namespace ConverterEmi
