#pragma once

#include <charconv>
#include <cstring>
#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>

/// \file
/// A cell of a VKRDBiDataSet into a value and a value into SQL. Numbers are float, double, short, int, unsigned int,
/// long and unsigned long, written with a point whatever the locale. Nothing throws.

/// False, and the value 0, for NULL and for a text that is not wholly a number of the type.
template <class Value> bool VKRDBcharpToType(const char* text, Value& value)
{
    static_assert(std::is_arithmetic_v<Value>);
    value = 0;
    if (text == nullptr)
        return false;
    const char* const end = text + std::strlen(text);
    const auto [stop, error] = std::from_chars(text, end, value);
    if (error == std::errc() && stop == end)
        return true;
    value = 0;
    return false;
}

/// A text into an array of `length` bytes, terminator included. False, and an empty text, for NULL and for a text that
/// does not fit: a cell is never cut.
inline bool VKRDBcharpToType(const char* text, char* value, std::size_t length)
{
    if (length == 0)
        return false;
    *value = '\0';
    const std::size_t size = text != nullptr ? std::strlen(text) : length;
    if (size >= length)
        return false;
    std::memcpy(value, text, size + 1);
    return true;
}

template <class Value> bool VKRDBstrToType(const std::string& text, Value& value)
{
    return VKRDBcharpToType(text.c_str(), value);
}
inline bool VKRDBstrToType(const std::string& text, char* value, std::size_t length)
{
    return VKRDBcharpToType(text.c_str(), value, length);
}

/// The number as it stands in a statement, with all its digits; "NULL" for what is no finite number.
template <class Value> std::string VKRDBtypeToSqlStr(Value value)
{
    static_assert(std::is_arithmetic_v<Value>);
    if constexpr (std::is_floating_point_v<Value>) {
        if (!(value - value == 0))
            return "NULL";
        std::ostringstream text;
        text.imbue(std::locale::classic());
        text.precision(std::numeric_limits<Value>::max_digits10);
        text << value;
        return text.str();
    } else {
        return std::to_string(value);
    }
}

/// The text in quotes, those inside doubled.
inline std::string VKRDBtypeToSqlStr(std::string_view text)
{
    std::string quoted = "'";
    for (const char c : text)
        quoted.append(c == '\'' ? 2 : 1, c);
    return quoted + "'";
}
/// A null pointer is NULL.
inline std::string VKRDBtypeToSqlStr(const char* text)
{
    return text != nullptr ? VKRDBtypeToSqlStr(std::string_view(text)) : "NULL";
}
/// A char array with a length: the text ends at its terminator or with the array.
inline std::string VKRDBtypeToSqlStr(const char* text, std::size_t length)
{
    return VKRDBtypeToSqlStr(std::string_view(text, strnlen(text, length)));
}
