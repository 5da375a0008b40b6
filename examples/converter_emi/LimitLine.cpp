#include "LimitLine.h"

#include "CsvTable.h"

#include <Math/Elementwise.h>
#include <Math/Errors.h>
#include <Math/Interpolation.h>

#include <fmt/format.h>

#include <array>
#include <vector>

namespace ConverterEmi {

namespace {

constexpr double lowestFrequency = 9e3;

template<std::size_t n>
Vector2 toVector(std::array<double, n> const& values) {
    return Vector2(values.data(), n);
}

} // namespace

Expected<void, ErrorCode2> checkBand(Band const& band) {
    // Written so that a NaN fails too.
    if (!(band.start >= lowestFrequency)) {
        return Tervane::Math::StartFrequencyTooSmall;
    }
    if (!(band.start <= band.stop)) {
        return Tervane::Math::StartAboveStop;
    }
    return {};
}

LimitLine::LimitLine(Vector2 const& frequency, Vector2 const& level)
    : _frequency(frequency), _logFrequency(Tervane::Math::log10(frequency)), _level(level) {}

LimitLine LimitLine::builtIn(Band const& band) {
    if (band.start < 150e3) {
        return LimitLine(toVector<9>({9e3, 50e3, 50e3, 150e3, 150e3, 500e3, 5e6, 5e6, 30e6}),
                         toVector<9>({110.0, 110.0, 90.0, 80.0, 56.0, 46.0, 46.0, 50.0, 50.0}));
    }
    return LimitLine(toVector<5>({150e3, 500e3, 5e6, 5e6, 30e6}),
                     toVector<5>({56.0, 46.0, 46.0, 50.0, 50.0}));
}

Expected<LimitLine, ErrorCode2> LimitLine::read(std::filesystem::path const& file, Place& place) {
    auto const table = readCsv(file, {"frequency_Hz", "limit_dBuV"}, place);
    if (!table) {
        return table.error();
    }
    auto const& frequency = table->columns[0];
    auto const& level = table->columns[1];
    if (frequency.empty()) {
        return Failure::FileEmpty;
    }
    for (std::size_t i = 0; i < frequency.size(); ++i) {
        if (frequency[i] <= 0.0 || (i > 0 && frequency[i] < frequency[i - 1])) {
            place.line = table->lines[i];
            place.detail = fmt::format("{} Hz", frequency[i]);
            return Failure::FrequencyNotIncreasing;
        }
    }
    return LimitLine(Vector2(frequency.data(), frequency.size()), Vector2(level.data(), level.size()));
}

Expected<void, ErrorCode2> LimitLine::checkCovers(Band const& band, Place& place) const {
    if (band.start < _frequency.front() || band.stop > _frequency.back()) {
        place.detail = fmt::format("{:g} Hz to {:g} Hz; the limit is defined from {:g} Hz to {:g} Hz",
                                   band.start, band.stop, _frequency.front(), _frequency.back());
        return Failure::BandBeyondLimit;
    }
    return {};
}

Vector2 LimitLine::at(Vector2 const& frequency) const {
    return Tervane::Math::interp(Tervane::Math::log10(frequency), _logFrequency, _level);
}

LimitLine LimitLine::within(Band const& band) const {
    std::vector<double> frequency{band.start};
    std::vector<double> level{at(Vector2(1, band.start))[0]};
    for (std::size_t i = 0; i < _frequency.length(); ++i) {
        // Of a step at the band's start, the level behind it belongs to the band as well.
        bool const endsStep = i > 0 && _frequency[i - 1] == _frequency[i];
        bool const behindStart = band.start < _frequency[i] || (band.start == _frequency[i] && endsStep);
        if (behindStart && _frequency[i] < band.stop) {
            frequency.push_back(_frequency[i]);
            level.push_back(_level[i]);
        }
    }
    frequency.push_back(band.stop);
    level.push_back(at(Vector2(1, band.stop))[0]);
    return LimitLine(Vector2(frequency.data(), frequency.size()), Vector2(level.data(), level.size()));
}

} // namespace ConverterEmi
