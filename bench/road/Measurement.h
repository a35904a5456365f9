#pragma once

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <utility>

class Stage;

/// What a measurement found.
struct Figure
{
    Figure(double ours, double bareOnes, std::string remark = {}) : value(ours), bare(bareOnes), note(std::move(remark))
    {
    }

    double value;
    /// The bare library at the same work in the same run, in the same unit.
    double bare;
    /// What else is worth knowing of this run; may be empty.
    std::string note;
    /// False when something that the numbers do not show was not as it must be; the note says what.
    bool sound = true;

    /// NaN when there is nothing to divide by.
    double Ratio() const { return bare > 0 ? value / bare : std::numeric_limits<double>::quiet_NaN(); }
};

/// What a figure has to reach. Limits that are not set do not count; of two lower limits the lower one does.
struct Goal
{
    std::optional<double> maxValue;
    std::optional<double> maxRatio;
    std::optional<double> minRatio;
    std::optional<double> minValue = {};

    bool IsMetBy(const Figure& figure) const
    {
        const bool lower = minValue || minRatio;
        return figure.sound && (!maxValue || figure.value <= *maxValue) && (!maxRatio || figure.Ratio() <= *maxRatio) &&
               (!lower || (minRatio && figure.Ratio() >= *minRatio) || (minValue && figure.value >= *minValue));
    }
    /// Such as "<= 1500 us, <= 2.5 x bare".
    std::string Text(const std::string& unit) const;
};

/// One row of the table of measurements.
struct Measurement
{
    const char* name;
    const char* unit;
    Goal goal;
    Figure (*measure)(Stage&);
};
