#pragma once

#include <string_view>

/// \file
/// Character classes of the C locale, whatever locale the host process has set. Bytes of 0x80 and more belong to no
/// class, so that UTF-8 passes through every text function unharmed.

namespace vk {

/// What isspace() calls white space.
inline constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";
/// Blank and tab only: line ends stay.
inline constexpr std::string_view kBlanks = " \t";

constexpr unsigned char ToByte(char c) { return static_cast<unsigned char>(c); }

constexpr bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }

constexpr bool IsAlnum(char c) { return IsDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

constexpr bool IsPrint(char c) { return c >= ' ' && c <= '~'; }

constexpr char ToUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

constexpr char ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

inline constexpr char kHexDigits[] = "0123456789ABCDEF";

/// The value of one hexadecimal digit in either case, -1 for any other character.
constexpr int HexValue(char c)
{
    if (IsDigit(c))
        return c - '0';
    const char upper = ToUpper(c);
    return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

/// The byte that the two hexadecimal digits at `at` stand for, -1 when there are not two.
constexpr int HexByte(std::string_view text, std::size_t at)
{
    if (at + 2 > text.size() || HexValue(text[at]) < 0 || HexValue(text[at + 1]) < 0)
        return -1;
    return HexValue(text[at]) * 16 + HexValue(text[at + 1]);
}

/// A null C text reads as the empty one.
constexpr std::string_view ViewOf(const char* text) { return text ? std::string_view(text) : std::string_view(); }

} // namespace vk
