#include "Statistics.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

double Quantile(std::vector<double> samples, double share)
{
    const auto rank = static_cast<std::size_t>(std::ceil(share * static_cast<double>(samples.size())));
    const auto place = samples.begin() + static_cast<std::ptrdiff_t>(rank > 0 ? rank - 1 : 0);
    std::nth_element(samples.begin(), place, samples.end());
    return *place;
}

std::string ShortNumber(double number)
{
    if (!std::isfinite(number))
        return "-";
    char text[64];
    std::snprintf(text, sizeof text, std::fabs(number) >= 1000 ? "%.0f" : "%.4g", number);
    return text;
}
