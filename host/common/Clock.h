#pragma once

#include <chrono>
#include <string>

namespace vk {

using TimePoint = std::chrono::system_clock::time_point;

/// ISO 8601 in UTC with milliseconds: "2024-05-01T03:00:12.345Z".
std::string IsoTime(TimePoint time);

/// The time of day where the machine stands, with milliseconds: "03:00:12.345".
std::string ClockTime(TimePoint time);

} // namespace vk
