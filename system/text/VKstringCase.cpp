#include "VKstringCase.h"

#include "VKascii.h"

#include <algorithm>

namespace vk {

int CompareNoCase(std::string_view a, std::string_view b)
{
    const std::size_t shared = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < shared; ++i) {
        const int difference = ToByte(ToLower(a[i])) - ToByte(ToLower(b[i]));
        if (difference != 0)
            return difference;
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

std::size_t FindNoCase(std::string_view text, std::string_view part, std::size_t from)
{
    if (from > text.size())
        return std::string_view::npos;
    const auto same = [](char a, char b) { return ToLower(a) == ToLower(b); };
    const auto start = text.begin() + static_cast<std::ptrdiff_t>(from);
    const auto found = std::search(start, text.end(), part.begin(), part.end(), same);
    if (found == text.end() && !part.empty())
        return std::string_view::npos;
    return static_cast<std::size_t>(found - text.begin());
}

char* UpperInPlace(char* text)
{
    for (char* at = text; at && *at; ++at)
        *at = ToUpper(*at);
    return text;
}

char* LowerInPlace(char* text)
{
    for (char* at = text; at && *at; ++at)
        *at = ToLower(*at);
    return text;
}

} // namespace vk

std::string VKstringUpperCase(const std::string& text)
{
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), vk::ToUpper);
    return upper;
}

std::string VKstringLowerCase(const std::string& text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), vk::ToLower);
    return lower;
}

int VKstringNoCaseCmp(const char* a, const char* b) { return VKstringNoCaseNCmp(a, b, std::string_view::npos); }

int VKstringNoCaseNCmp(const char* a, const char* b, std::size_t count)
{
    if (!a || !b)
        return (a ? 1 : 0) - (b ? 1 : 0);
    return vk::CompareNoCase(std::string_view(a).substr(0, count), std::string_view(b).substr(0, count));
}

int VKstringReverseNoCaseNCmp(const char* a, const char* b, std::size_t count)
{
    if (!a || !b)
        return (a ? 1 : 0) - (b ? 1 : 0);
    const auto backwards = [count](std::string_view text) {
        const std::string_view tail = text.substr(text.size() - std::min(count, text.size()));
        return std::string(tail.rbegin(), tail.rend());
    };
    return vk::CompareNoCase(backwards(a), backwards(b));
}

const char* VKstringFindNoCaseSubstring(const char* text, const char* part)
{
    if (!text || !part)
        return nullptr;
    const std::size_t at = vk::FindNoCase(text, part);
    return at == std::string_view::npos ? nullptr : text + at;
}
