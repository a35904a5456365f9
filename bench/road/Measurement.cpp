#include "Measurement.h"

#include "Statistics.h"

std::string Goal::Text(const std::string& unit) const
{
    std::string text;
    const auto add = [&](const char* sign, const std::optional<double>& limit, const std::string& behind) {
        if (limit)
            text += (text.empty() ? "" : ", ") + std::string(sign) + " " + ShortNumber(*limit) + " " + behind;
    };
    add("<=", maxValue, unit);
    add("<=", maxRatio, "x bare");
    if (minValue && minRatio)
        return ">= " + ShortNumber(*minValue) + " " + unit + " or " + ShortNumber(*minRatio) + " x bare";
    add(">=", minRatio, "x bare");
    add(">=", minValue, unit);
    return text;
}
