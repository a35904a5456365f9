#include "VKstringPattern.h"

#include "VKascii.h"
#include "VKstringCase.h"

namespace {

bool Equal(std::string_view a, std::string_view b, bool ignoreCase)
{
    return ignoreCase ? vk::EqualNoCase(a, b) : a == b;
}

/// Takes the part from the front of the text if it stands there.
bool TakeFront(std::string_view& text, std::string_view part, bool ignoreCase)
{
    if (!Equal(text.substr(0, part.size()), part, ignoreCase))
        return false;
    text.remove_prefix(part.size());
    return true;
}

} // namespace

bool VKstrContainPattern(const char* text, const char* pattern, bool ignoreCase)
{
    if (!pattern)
        return true;
    std::string_view rest = vk::ViewOf(text);
    std::string_view parts(pattern);
    std::size_t star = parts.find('*');
    if (star == std::string_view::npos)
        return Equal(rest, parts, ignoreCase);
    if (!TakeFront(rest, parts.substr(0, star), ignoreCase))
        return false;
    parts.remove_prefix(star + 1);

    // Each part between two stars at its first place: any later one would only leave less room for those that follow.
    for (star = parts.find('*'); star != std::string_view::npos; star = parts.find('*')) {
        const std::string_view part = parts.substr(0, star);
        const std::size_t at = ignoreCase ? vk::FindNoCase(rest, part) : rest.find(part);
        if (at == std::string_view::npos)
            return false;
        rest.remove_prefix(at + part.size());
        parts.remove_prefix(star + 1);
    }
    return rest.size() >= parts.size() && Equal(rest.substr(rest.size() - parts.size()), parts, ignoreCase);
}
