#include "VKtime.h"

#include "VKascii.h"
#include "VKstringTrim.h"

#include <algorithm>
#include <charconv>
#include <ctime>
#include <optional>

namespace {

/// The number at the front of a text, behind white space and a sign, as atoi() reads it; nothing without a digit.
std::optional<int> LeadingNumber(std::string_view text)
{
    text = vk::Trimmed(text, vk::kWhiteSpace, vk::Side::Left);
    if (!text.empty() && text[0] == '+')
        text.remove_prefix(1);
    int number = 0;
    const std::from_chars_result end = std::from_chars(text.data(), text.data() + text.size(), number);
    return end.ec == std::errc() ? std::optional<int>(number) : std::nullopt;
}

long MakeTime(std::tm parts)
{
    parts.tm_isdst = -1;
    return std::mktime(&parts);
}

// --- SNPP

constexpr std::size_t kSnppDigits = 12;

int TwoDigits(std::string_view digits, std::size_t at) { return (digits[at] - '0') * 10 + (digits[at + 1] - '0'); }

/// The years from 50 on lie in the current century, those before it in the next one once this one is half over.
int FullYear(int twoDigits)
{
    const int current = VKutilGetCurrYear();
    const int century = current / 100 * 100;
    return century + twoDigits + (twoDigits <= 49 && current % 100 >= 50 ? 100 : 0);
}

bool Between(int value, int least, int most) { return value >= least && value <= most; }

/// The twelve digits as calendar parts; nothing when one is no such part.
std::optional<std::tm> SnppParts(std::string_view digits)
{
    std::tm parts{};
    parts.tm_year = FullYear(TwoDigits(digits, 0)) - 1900;
    parts.tm_mon = TwoDigits(digits, 2) - 1;
    parts.tm_mday = TwoDigits(digits, 4);
    parts.tm_hour = TwoDigits(digits, 6);
    parts.tm_min = TwoDigits(digits, 8);
    parts.tm_sec = TwoDigits(digits, 10);
    const bool valid = Between(parts.tm_mon, 0, 11) && Between(parts.tm_mday, 1, 31) && parts.tm_hour <= 24 &&
                       parts.tm_min <= 60 && parts.tm_sec <= 60;
    return valid ? std::optional<std::tm>(parts) : std::nullopt;
}

/// Seconds that local time is ahead of GMT at this moment.
long LocalOffset()
{
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    localtime_r(&now, &parts);
    return parts.tm_gmtoff;
}

/// The offset in hours; nothing for what is no multiple of 100.
std::optional<int> OffsetHours(std::string_view text)
{
    constexpr std::size_t kLongest = 6; // so that no calendar part overflows
    const std::string_view digits = text.substr(text[0] == '+' || text[0] == '-' ? 1 : 0);
    if (digits.empty() || digits.size() > kLongest || !std::all_of(digits.begin(), digits.end(), vk::IsDigit))
        return std::nullopt;
    const int offset = LeadingNumber(text).value_or(1);
    return offset % 100 == 0 ? std::optional<int>(offset / 100) : std::nullopt;
}

// --- Month, day and year

struct Date
{
    int month;
    int day;
    int year;
};

/// Two characters of month, two of day behind the first "/", four of year behind the second.
std::optional<Date> DateOf(std::string_view text)
{
    const std::size_t first = text.find('/');
    const std::size_t second = first == std::string_view::npos ? first : text.find('/', first + 1);
    if (second == std::string_view::npos)
        return std::nullopt;
    const std::optional<int> month = LeadingNumber(text.substr(0, 2));
    const std::optional<int> day = LeadingNumber(text.substr(first + 1, 2));
    const std::optional<int> year = LeadingNumber(text.substr(second + 1, 4));
    return month && day && year ? std::optional<Date>(Date{*month, *day, *year}) : std::nullopt;
}

struct TimeOfDay
{
    int hour;
    int minute;
    int second;
};

/// A part that is negative or no number is 0.
std::optional<TimeOfDay> TimeOf(std::string_view text)
{
    const std::size_t first = text.find(':');
    const std::size_t second = first == std::string_view::npos ? first : text.find(':', first + 1);
    if (second == std::string_view::npos)
        return std::nullopt;
    const auto part = [](std::string_view digits) { return std::max(0, LeadingNumber(digits).value_or(0)); };
    return TimeOfDay{part(text.substr(0, first)), part(text.substr(first + 1, second - first - 1)),
                     part(text.substr(second + 1))};
}

} // namespace

long VKutilSnppTime(const char* text)
{
    tzset();
    const std::string_view whole = vk::ViewOf(text);
    const std::string_view digits = whole.substr(0, kSnppDigits);
    const std::string_view behind = whole.substr(digits.size());
    if (digits.size() < kSnppDigits || !std::all_of(digits.begin(), digits.end(), vk::IsDigit) ||
        (!behind.empty() && !vk::IsSpace(behind[0])))
        return -1;
    std::optional<std::tm> parts = SnppParts(digits);
    const std::string_view offset = vk::Trimmed(behind);
    if (!parts || offset.empty())
        return parts ? MakeTime(*parts) : -1;
    const std::optional<int> hours = OffsetHours(offset);
    if (!hours)
        return -1;
    parts->tm_hour -= *hours;
    parts->tm_sec += static_cast<int>(LocalOffset());
    return MakeTime(*parts);
}

long VKutilParseDate(const char* text, bool hasTime, char separator)
{
    const std::string_view whole = vk::ViewOf(text);
    const std::size_t at = hasTime ? whole.find(separator) : std::string_view::npos;
    std::optional<Date> date = DateOf(whole.substr(0, at));
    if (!date)
        return 0;
    if (!Between(date->year, 1970, 2038)) {
        date->year = 2002;
        if (!Between(date->month, 1, 12))
            date->month = 1;
    }
    std::optional<TimeOfDay> time = TimeOfDay{0, 0, 0};
    if (at != std::string_view::npos)
        time = TimeOf(whole.substr(at + 1));
    if (!time)
        return 0;
    std::tm parts{};
    parts.tm_year = date->year - 1900;
    parts.tm_mon = date->month - 1;
    parts.tm_mday = date->day;
    parts.tm_hour = time->hour;
    parts.tm_min = time->minute;
    parts.tm_sec = time->second;
    return MakeTime(parts);
}

long VKutilParseTime(const char* text)
{
    const std::optional<TimeOfDay> time = TimeOf(vk::ViewOf(text));
    return time ? (time->hour * 60L + time->minute) * 60L + time->second : 0;
}
