#include "VKfilePattern.h"

namespace vk {

bool FileNameMatches(std::string_view name, std::string_view pattern)
{
    if (name.empty() || pattern.empty())
        return false;
    const std::size_t firstStar = pattern.find('*');
    if (firstStar == std::string_view::npos)
        return name == pattern;

    const std::string_view head = pattern.substr(0, firstStar);
    const std::string_view tail = pattern.substr(pattern.rfind('*') + 1);
    if (name.size() < head.size() + tail.size() || name.substr(0, head.size()) != head ||
        name.substr(name.size() - tail.size()) != tail)
        return false;

    // What lies between the first and the last star must occur in order; the earliest place is always good enough.
    name = name.substr(head.size(), name.size() - head.size() - tail.size());
    pattern = pattern.substr(firstStar, pattern.size() - head.size() - tail.size());
    while (!pattern.empty()) {
        const std::size_t begin = pattern.find_first_not_of('*');
        if (begin == std::string_view::npos)
            return true;
        const std::string_view part = pattern.substr(begin, pattern.find('*', begin) - begin);
        const std::size_t found = name.find(part);
        if (found == std::string_view::npos)
            return false;
        name.remove_prefix(found + part.size());
        pattern.remove_prefix(begin + part.size());
    }
    return true;
}

} // namespace vk
