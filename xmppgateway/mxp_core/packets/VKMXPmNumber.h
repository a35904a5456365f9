#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

/// \file
/// How numbers stand on the wire: decimal, whatever the process's locale is. The reader takes the leading digits, base
/// 10, behind blanks and a sign; a text without any is 0.

namespace vk {

namespace detail {

/// Takes blanks and one sign off the front; whether the sign was a minus.
inline bool TakeSign(std::string_view& text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = !text.empty() && text.front() == '-';
    if (negative || (!text.empty() && text.front() == '+'))
        text.remove_prefix(1);
    return negative;
}

/// The leading digits; the greatest number when there are too many.
inline unsigned long Magnitude(std::string_view text)
{
    unsigned long digits = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), digits);
    return end.ec == std::errc::result_out_of_range ? std::numeric_limits<unsigned long>::max() : digits;
}

} // namespace detail

template <class Number>
std::enable_if_t<std::is_integral_v<Number> && !std::is_same_v<Number, bool>> AppendValue(std::string& out,
                                                                                          Number number)
{
    char digits[24];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

/// With six significant digits.
inline void AppendValue(std::string& out, double number)
{
    char digits[32];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, number, std::chars_format::general, 6).ptr);
}

/// As strtol reads it; a number beyond 32 bits is cut to them.
inline std::int32_t NumberOf(std::string_view text)
{
    const bool negative = detail::TakeSign(text);
    constexpr unsigned long most = std::numeric_limits<long>::max();
    const unsigned long digits = detail::Magnitude(text);
    const unsigned long magnitude = digits > most ? most + negative : digits;
    return static_cast<std::int32_t>(negative ? 0 - magnitude : magnitude);
}

/// As strtoul reads it: a minus counts down from the greatest number.
inline unsigned long UnsignedNumberOf(std::string_view text)
{
    const bool negative = detail::TakeSign(text);
    const unsigned long digits = detail::Magnitude(text);
    const bool tooLong = digits == std::numeric_limits<unsigned long>::max();
    return negative && !tooLong ? 0 - digits : digits;
}

/// 0 also for a number that no double holds, and for the words "inf" and "nan".
inline double RealNumberOf(std::string_view text)
{
    const bool negative = detail::TakeSign(text);
    if (text.empty() || (text.front() != '.' && (text.front() < '0' || text.front() > '9')))
        return 0;
    double number = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), number);
    if (end.ec != std::errc())
        return 0;
    return negative ? -number : number;
}

inline void ReadValue(std::string_view text, std::int32_t& value) { value = NumberOf(text); }
inline void ReadValue(std::string_view text, std::uint32_t& value)
{
    value = static_cast<std::uint32_t>(UnsignedNumberOf(text));
}
inline void ReadValue(std::string_view text, unsigned long& value) { value = UnsignedNumberOf(text); }
inline void ReadValue(std::string_view text, double& value) { value = RealNumberOf(text); }

} // namespace vk
