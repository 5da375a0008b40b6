#include "Record.h"

#include <Math/Generators.h>
#include <Math/Interpolation.h>

#include <common/CsvTable.h>
#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>

namespace ConverterEmi {

namespace {

using Examples::CsvTable;

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
    auto const interval = Examples::parseNumber(comment->second);
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

constexpr double samplesPerPeriodOfHighest = 16.0;

} // namespace

Expected<Record, ErrorCode2> readRecord(RecordSource const& source, Place& place) {
    bool hasTime = false;
    bool const hasCapacitor = !source.voltageColumn.empty();
    auto const chooseColumns = [&](std::vector<std::string> const& header) {
        std::vector<std::string> names{source.signalColumn};
        if (hasCapacitor) {
            names.insert(names.end(), {source.voltageColumn, source.currentColumn});
        }
        hasTime = std::ranges::find(header, source.timeColumn) != header.end();
        if (hasTime) {
            names.push_back(source.timeColumn);
        }
        return names;
    };
    auto const table = Examples::readCsv(source.file, chooseColumns, place);
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
    if (auto const circuit = table->comments.find("circuit"); circuit != table->comments.end()) {
        record.circuit = circuit->second;
    }
    if (hasCapacitor) {
        record.capacitor = CapacitorRecord{toVector(table->columns[1]), toVector(table->columns[2])};
    }
    return record;
}

Vector2 Grid::times() const {
    return Tervane::Math::arange(static_cast<int>(samples)) * interval + start;
}

Expected<Grid, ErrorCode2> chooseGrid(Vector2 const& time, double switchingFrequency, double highestFrequency,
                                      std::optional<std::size_t> samples, Place& place) {
    if (switchingFrequency > highestFrequency) {
        return Failure::NoHarmonicInBand;
    }
    // The last sample stands for the interval up to the next one, so n samples cover n intervals.
    double const covered = time.back() - time.front();
    double const lastInterval = covered / static_cast<double>(time.length() - 1);
    // Times are decimal numbers: a record of exactly n periods must not lose one to their rounding.
    double const periods = std::floor((covered + lastInterval) * switchingFrequency + 1e-6);
    if (!(periods >= 1.0)) {
        place.detail = fmt::format("{:g} s at {:g} Hz", covered, switchingFrequency);
        return Failure::LessThanOnePeriod;
    }
    double const duration = periods / switchingFrequency;

    double const samplesInDuration = duration / lastInterval;
    double const fewest = 2.0 * highestFrequency * duration;
    if (!(samplesInDuration >= fewest)) {
        place.detail = fmt::format("{:.0f} in {:g} s, but {:g} Hz needs {:.0f} or more", samplesInDuration,
                                   duration, highestFrequency, fewest);
        return Failure::TooFewSamples;
    }
    if (!samples) {
        double const enough = samplesPerPeriodOfHighest * highestFrequency * duration;
        samples = std::bit_ceil(static_cast<std::size_t>(std::ceil(std::max(enough, samplesInDuration))));
    } else if (static_cast<double>(*samples) < fewest) {
        place.detail =
            fmt::format("{} chosen, but {:g} Hz needs {:.0f} or more", *samples, highestFrequency, fewest);
        return Failure::TooFewSamples;
    }
    if (*samples > mostSamples) {
        place.detail = fmt::format("{}", *samples);
        return Failure::TooManySamples;
    }
    return Grid{time.front(), duration / static_cast<double>(*samples), *samples,
                static_cast<std::size_t>(periods)};
}

Vector2 resample(Grid const& grid, Vector2 const& time, Vector2 const& values) {
    return Tervane::Math::interp(grid.times(), time, values);
}

} // namespace ConverterEmi
