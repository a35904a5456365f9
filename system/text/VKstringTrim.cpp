#include "VKstringTrim.h"

#include <cstring>

namespace vk {

std::string_view Trimmed(std::string_view text, std::string_view set, Side side)
{
    const auto inSet = [set](char c) { return set.find(c) != std::string_view::npos; };
    if (side != Side::Left)
        while (!text.empty() && inSet(text.back()))
            text.remove_suffix(1);
    if (side != Side::Right)
        while (!text.empty() && inSet(text.front()))
            text.remove_prefix(1);
    return text;
}

char* TrimInPlace(char* text, std::string_view set, Side side)
{
    if (!text)
        return text;
    const std::string_view kept = Trimmed(text, set, side);
    std::memmove(text, kept.data(), kept.size());
    text[kept.size()] = '\0';
    return text;
}

std::string& TrimInPlace(std::string& text, std::string_view set, Side side)
{
    const std::string_view kept = Trimmed(text, set, side);
    const std::size_t start = static_cast<std::size_t>(kept.data() - text.data());
    text.erase(start + kept.size());
    text.erase(0, start);
    return text;
}

} // namespace vk
