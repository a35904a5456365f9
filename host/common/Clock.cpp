#include "Clock.h"

#include <cstdio>
#include <ctime>

namespace vk {

namespace {

std::string WithMilliseconds(const char* format, const std::tm& parts, TimePoint time, const char* end)
{
    char text[40];
    const std::size_t length = std::strftime(text, sizeof text, format, &parts);
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
    std::snprintf(text + length, sizeof text - length, ".%03d%s", static_cast<int>(sinceEpoch % 1000), end);
    return text;
}

} // namespace

std::string IsoTime(TimePoint time)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    return WithMilliseconds("%Y-%m-%dT%H:%M:%S", parts, time, "Z");
}

std::string ClockTime(TimePoint time)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm parts{};
    localtime_r(&seconds, &parts);
    return WithMilliseconds("%H:%M:%S", parts, time, "");
}

} // namespace vk
