#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// \file
/// Letter case: changing it, comparing and finding without regard to it. Only the letters A to Z have a case here, so
/// that UTF-8 is left alone. Compare functions give a number below, equal to or above 0; a null text is less than any
/// other.

namespace vk {

/// Compares without regard to case, as strcasecmp() does in the C locale.
int CompareNoCase(std::string_view a, std::string_view b);

/// Where the part first occurs without regard to case, or std::string_view::npos. An empty part is found at once.
std::size_t FindNoCase(std::string_view text, std::string_view part, std::size_t from = 0);

inline bool EqualNoCase(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && CompareNoCase(a, b) == 0;
}

char* UpperInPlace(char* text);
char* LowerInPlace(char* text);

} // namespace vk

inline char* VKstringUpperCase(char* text) { return vk::UpperInPlace(text); }
inline char* VKstringLowerCase(char* text) { return vk::LowerInPlace(text); }
inline char* VKutilStrUpperCase(char* text) { return vk::UpperInPlace(text); }
inline char* VKutilStrLowerCase(char* text) { return vk::LowerInPlace(text); }
[[nodiscard]] std::string VKstringUpperCase(const std::string& text);
[[nodiscard]] std::string VKstringLowerCase(const std::string& text);

int VKstringNoCaseCmp(const char* a, const char* b);
/// At most the first `count` characters.
int VKstringNoCaseNCmp(const char* a, const char* b, std::size_t count);
/// The last `count` characters, compared from the ends backwards.
int VKstringReverseNoCaseNCmp(const char* a, const char* b, std::size_t count);

inline int VKstringNoCaseCmp(const std::string& a, const std::string& b) { return vk::CompareNoCase(a, b); }
inline int VKstringNoCaseNCmp(const std::string& a, const std::string& b, std::size_t count)
{
    return vk::CompareNoCase(std::string_view(a).substr(0, count), std::string_view(b).substr(0, count));
}
inline int VKutilStrNoCaseCmp(const char* a, const char* b) { return VKstringNoCaseCmp(a, b); }
inline int VKutilStrNoCaseNCmp(const char* a, const char* b, std::size_t count)
{
    return VKstringNoCaseNCmp(a, b, count);
}

/// Where the part first occurs in the text without regard to case, null when it does not or either is null.
const char* VKstringFindNoCaseSubstring(const char* text, const char* part);
inline const char* VKstringFindNoCaseSubstringQuick(const char* text, const char* part)
{
    return VKstringFindNoCaseSubstring(text, part);
}
inline const char* VKutilStrFindNoCaseSubstring(const char* text, const char* part)
{
    return VKstringFindNoCaseSubstring(text, part);
}
inline std::size_t VKstringFindNoCaseSubstring(const std::string& text, const std::string& part, std::size_t from = 0)
{
    return vk::FindNoCase(text, part, from);
}

/// Whether the text holds the part, letter case counting.
inline bool VKFind(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }
