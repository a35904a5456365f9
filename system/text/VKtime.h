#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

struct timeval;

/// \file
/// Dates and times as text and back. A time is seconds since the epoch; texts are local time unless told otherwise.
/// A time that no calendar holds gives an empty text.

namespace vk {

/// A time through strftime(), in local time.
std::string LocalTimeText(long time, const char* format);

} // namespace vk

// The clock.

long VKutilNow();
/// The time whose local reading is what GMT reads now (or at `time`): for texts in GMT from functions that write local
/// time.
long VKutilNowGMT();
long VKutilGetGMT(long time);
int VKutilGetCurrYear();
/// Milliseconds since the epoch.
std::int64_t GetCurrTimeInMS();
bool GetTimeOfDay(timeval& now);

// Time to text.

/// "Thu Jan  1 00:00:00 1970", without ctime()'s line feed, in a buffer of the calling thread that its next call
/// overwrites. For log texts.
const char* VKutilCtime(long time);
/// "MM/DD/YYYY".
[[nodiscard]] std::string VKstringGetDate(long time);
/// Into `text` of `size` bytes, at least 11. Returns the length, -1 when it does not fit.
int VKutilGetDate(long time, char* text, std::size_t size);
/// strftime() of local time. Returns the length, -1 when it does not fit.
int VKutilStrFTime(char* text, std::size_t size, const char* format, long time);

/// "MM/DD/YYYY HH:MM:SS", as the database's filters read it too.
[[nodiscard]] std::string VKstringSQLTime(long time);
[[nodiscard]] std::string VKstringSQLFilterTime(long time);
/// "YYYY-MM-DD HH:MM:SS".
[[nodiscard]] std::string VKstringSQLGetTime(long time);
/// As VKutilCtime.
[[nodiscard]] std::string VKstringSQLCTime(long time);

// Text to time.

/// The date of the SNPP protocol (RFC 1861): YYMMDDHHMMSS in local time, or, behind white space, with the offset from
/// GMT in hundreds of hours ("+0500", "-700"). -1 for anything else.
long VKutilSnppTime(const char* text);

/// "MM/DD/YYYY", and with `hasTime` a time "HH:MM:SS" behind the separator, when the separator is there. 0 for null or
/// a missing part. A year outside 1970 to 2038 is read as 2002, on purpose: a made-up date rather than none.
long VKutilParseDate(const char* text, bool hasTime, char separator);
inline long VKutilParseTimeStamp(const char* text, char separator) { return VKutilParseDate(text, true, separator); }
/// "HH:MM:SS" as seconds since midnight. 0 for null or without two colons; negative parts count as 0.
long VKutilParseTime(const char* text);
