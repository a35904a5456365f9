#pragma once

#include "VKascii.h"

#include <string>
#include <string_view>

/// \file
/// Trimming. The functions on char* work in place, move the text down when the left side goes, return the pointer they
/// were given, and let null pass. White space is what isspace() calls so in the C locale.

namespace vk {

enum class Side { Left, Right, Both };

/// The text without the characters of the set at its ends. A view into the same bytes.
std::string_view Trimmed(std::string_view text, std::string_view set = kWhiteSpace, Side side = Side::Both);

/// The same on a zero-terminated text, in place.
char* TrimInPlace(char* text, std::string_view set = kWhiteSpace, Side side = Side::Both);

/// The same on a string, in place.
std::string& TrimInPlace(std::string& text, std::string_view set = kWhiteSpace, Side side = Side::Both);

} // namespace vk

inline char* VKstringTrim(char* text) { return vk::TrimInPlace(text); }
inline char* VKstringTrimLeft(char* text) { return vk::TrimInPlace(text, vk::kWhiteSpace, vk::Side::Left); }
inline char* VKstringTrimRight(char* text) { return vk::TrimInPlace(text, vk::kWhiteSpace, vk::Side::Right); }
inline char* VKstringTrimSpaces(char* text) { return vk::TrimInPlace(text); }
inline char* VKstringStrip(char* text) { return vk::TrimInPlace(text); }
inline char* VKutilStrTrimSpaces(char* text) { return vk::TrimInPlace(text); }
inline char* VKutilStrStrip(char* text) { return vk::TrimInPlace(text); }
inline char* VKutilStrStripTrailWhite(char* text) { return VKstringTrimRight(text); }

/// Only blanks and tabs; line ends stay.
inline char* VKstringTrimSpacesAndTabs(char* text) { return vk::TrimInPlace(text, vk::kBlanks); }

/// Only the line end at the right.
inline char* VKstringChop(char* text) { return vk::TrimInPlace(text, "\r\n", vk::Side::Right); }
inline char* VKutilStrChop(char* text) { return VKstringChop(text); }

/// Only this character, at the right.
inline char* VKstringTrimRight(char* text, char c)
{
    return vk::TrimInPlace(text, std::string_view(&c, 1), vk::Side::Right);
}

/// A copy without white space at its ends. The forms with a set work in place.
[[nodiscard]] inline std::string VKstringTrim(const std::string& text) { return std::string(vk::Trimmed(text)); }

inline std::string& VKstringTrim(std::string& text, const std::string& set) { return vk::TrimInPlace(text, set); }

inline std::string& VKstringTrimLeft(std::string& text, const std::string& set)
{
    return vk::TrimInPlace(text, set, vk::Side::Left);
}

inline std::string& VKstringTrimRight(std::string& text, const std::string& set)
{
    return vk::TrimInPlace(text, set, vk::Side::Right);
}
