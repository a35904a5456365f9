#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <strings.h>
#include <system_error>

#include "VKsysCodec.h"

/// \file
/// How a value of each type stands on the wire. A packet's field takes the form of its type; a mark on the field says
/// where it departs from that.

namespace vk {

inline void AppendValue(std::string& out, std::string_view text) { VKsysCodec::AppendXmlData(out, text); }

inline void AppendValue(std::string& out, std::int32_t number)
{
    char digits[12];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

inline void AppendValue(std::string& out, bool flag) { out += flag ? '1' : '0'; }

inline void ReadValue(std::string_view text, std::string& value) { value.assign(text); }

/// The leading digits, base 10, behind blanks and a sign, as strtol reads them; 0 without any. A number beyond 32 bits
/// is cut to them.
inline std::int32_t NumberOf(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = !text.empty() && text.front() == '-';
    if (negative || (!text.empty() && text.front() == '+'))
        text.remove_prefix(1);
    unsigned long digits = 0;
    const bool tooLong =
        std::from_chars(text.data(), text.data() + text.size(), digits).ec == std::errc::result_out_of_range;
    constexpr unsigned long most = std::numeric_limits<long>::max();
    const unsigned long magnitude = tooLong || digits > most ? most + negative : digits;
    return static_cast<std::int32_t>(negative ? 0 - magnitude : magnitude);
}

inline void ReadValue(std::string_view text, std::int32_t& value) { value = NumberOf(text); }

/// False for an empty text and for "false", "0" and "no" in any case.
inline void ReadValue(std::string_view text, bool& value)
{
    value = !text.empty();
    for (const std::string_view no : {"false", "0", "no"})
        if (text.size() == no.size() && strncasecmp(text.data(), no.data(), no.size()) == 0)
            value = false;
}

} // namespace vk
