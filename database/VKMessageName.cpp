#include "VKMessageName.h"

#include <algorithm>
#include <charconv>

#include "VKDBexception.h"

namespace vk {

std::string MessageName::Text() const
{
    return std::string(1, status) + "." + std::to_string(queryCount) + "." + job +
           (protocol.empty() ? "" : "." + protocol);
}

MessageName MessageName::Parse(const std::string& name)
{
    MessageName parts;
    parts.status = name.empty() ? '\0' : name[0];
    if (!HasStatusLetter(name))
        return parts;
    std::string rest = name.substr(2);

    const char* const end = rest.data() + rest.size();
    int count = 0;
    const auto number = std::from_chars(rest.data(), end, count);
    if (number.ec == std::errc() && count >= 0 && number.ptr != end && *number.ptr == '.') {
        parts.queryCount = count;
        rest.erase(0, static_cast<std::size_t>(number.ptr - rest.data()) + 1);
    }
    const std::size_t point = rest.rfind('.');
    parts.job = rest.substr(0, point);
    if (point != std::string::npos)
        parts.protocol = rest.substr(point + 1);
    return parts;
}

namespace {
constexpr std::size_t kLongestName = 255;
}

bool IsFileName(const std::string& name)
{
    const bool readable = std::none_of(name.begin(), name.end(), [](char c) {
        return c == '/' || static_cast<unsigned char>(c) < ' ' || c == '\x7f';
    });
    return !name.empty() && name.size() <= kLongestName && readable && name != "." && name != "..";
}

bool IsMessageName(const std::string& name)
{
    return IsFileName(name) && name != "lock" && !IsQueueOwnFile(name);
}

void RequireMessageName(const std::string& name)
{
    if (!IsMessageName(name))
        throw VKDBexception(DbError::General, __FILE__, __LINE__,
                            "The message name [" + name.substr(0, kLongestName) +
                                "] is refused: it must be a file name of 1 to 255 bytes without a slash or a control "
                                "character, and none of the queue's own files.");
}

bool IsQueueOwnFile(const std::string& name) { return name.rfind("queue_metabase.sdb", 0) == 0; }

bool HasStatusLetter(const std::string& name) { return name.size() >= 3 && name[1] == '.'; }

} // namespace vk
