#include "Resampling.h"

#include <Math/Generators.h>
#include <Math/Interpolation.h>

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>

namespace ConverterEmi {

namespace {

constexpr double samplesPerPeriodOfHighest = 16.0;
constexpr std::size_t mostSamples = std::size_t(1) << 28;

} // namespace

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
