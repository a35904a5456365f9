#include "Utf8.h"

namespace vk {

namespace {

/// A class of lead bytes: how many bytes follow, and between what the first of them must lie.
struct Lead
{
    unsigned char from, to;
    std::size_t following;
    unsigned char least, most;
};

constexpr Lead kLeads[] = {
    {0x00, 0x7F, 0, 0x00, 0x00}, {0xC2, 0xDF, 1, 0x80, 0xBF}, {0xE0, 0xE0, 2, 0xA0, 0xBF},
    {0xE1, 0xEC, 2, 0x80, 0xBF}, {0xED, 0xED, 2, 0x80, 0x9F}, {0xEE, 0xEF, 2, 0x80, 0xBF},
    {0xF0, 0xF0, 3, 0x90, 0xBF}, {0xF1, 0xF3, 3, 0x80, 0xBF}, {0xF4, 0xF4, 3, 0x80, 0x8F},
};

const Lead* FindLead(unsigned char byte)
{
    for (const Lead& lead : kLeads)
        if (byte >= lead.from && byte <= lead.to)
            return &lead;
    return nullptr;
}

/// The length of the character at the begin of the text, 0 when it is not well formed.
std::size_t CharacterLength(std::string_view text)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const Lead* lead = FindLead(byte(0));
    if (lead == nullptr || text.size() <= lead->following)
        return 0;
    for (std::size_t i = 1; i <= lead->following; ++i) {
        const unsigned char least = i == 1 ? lead->least : 0x80;
        const unsigned char most = i == 1 ? lead->most : 0xBF;
        if (byte(i) < least || byte(i) > most)
            return 0;
    }
    return lead->following + 1;
}

} // namespace

std::size_t FindInvalidUtf8(std::string_view text)
{
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = CharacterLength(text.substr(at));
        if (length == 0)
            return at;
        at += length;
    }
    return std::string_view::npos;
}

} // namespace vk
