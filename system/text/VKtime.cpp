#include "VKtime.h"

#include "VKstringTrim.h"

#include <chrono>
#include <ctime>
#include <optional>
#include <sys/time.h>

namespace {

constexpr char kDate[] = "%m/%d/%Y";

std::optional<std::tm> LocalTime(long time)
{
    const std::time_t seconds = time;
    std::tm parts{};
    return localtime_r(&seconds, &parts) ? std::optional<std::tm>(parts) : std::nullopt;
}

/// ctime() rather than strftime(), which would name days and months in the language of the process.
std::string CtimeText(long time)
{
    const std::time_t seconds = time;
    char text[64];
    return ctime_r(&seconds, text) ? std::string(vk::Trimmed(text)) : std::string();
}

} // namespace

std::string vk::LocalTimeText(long time, const char* format)
{
    const std::optional<std::tm> parts = LocalTime(time);
    char text[256];
    return parts ? std::string(text, std::strftime(text, sizeof text, format, &*parts)) : std::string();
}

long VKutilNow() { return std::time(nullptr); }

long VKutilNowGMT() { return VKutilGetGMT(VKutilNow()); }

long VKutilGetGMT(long time)
{
    const std::time_t seconds = time;
    std::tm parts{};
    if (!gmtime_r(&seconds, &parts))
        return -1;
    parts.tm_isdst = -1;
    return std::mktime(&parts);
}

int VKutilGetCurrYear()
{
    const std::optional<std::tm> parts = LocalTime(VKutilNow());
    return parts ? parts->tm_year + 1900 : -1;
}

std::int64_t GetCurrTimeInMS()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

bool GetTimeOfDay(timeval& now) { return gettimeofday(&now, nullptr) == 0; }

const char* VKutilCtime(long time)
{
    thread_local std::string text;
    text = CtimeText(time);
    return text.c_str();
}

std::string VKstringGetDate(long time) { return vk::LocalTimeText(time, kDate); }

int VKutilGetDate(long time, char* text, std::size_t size) { return VKutilStrFTime(text, size, kDate, time); }

int VKutilStrFTime(char* text, std::size_t size, const char* format, long time)
{
    const std::optional<std::tm> parts = LocalTime(time);
    if (!text || size == 0 || !format || !parts)
        return -1;
    const std::size_t length = std::strftime(text, size, format, &*parts);
    text[length] = '\0';
    // strftime() gives 0 for a text that does not fit and for one that is empty.
    return length == 0 && *format != '\0' ? -1 : static_cast<int>(length);
}

std::string VKstringSQLTime(long time) { return vk::LocalTimeText(time, "%m/%d/%Y %H:%M:%S"); }

std::string VKstringSQLFilterTime(long time) { return VKstringSQLTime(time); }

std::string VKstringSQLGetTime(long time) { return vk::LocalTimeText(time, "%Y-%m-%d %H:%M:%S"); }

std::string VKstringSQLCTime(long time) { return CtimeText(time); }
