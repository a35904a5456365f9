#include "VKstringXmlText.h"

#include "VKascii.h"

#include <cstdint>
#include <cstring>
#include <string_view>

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD"; // U+FFFD

/// How many bytes at the front are printable ASCII, in steps of eight: the bulk of most texts.
std::size_t PlainRun(std::string_view text)
{
    constexpr std::uint64_t kHighBits = 0x8080808080808080u;
    constexpr std::uint64_t kBlanks = 0x2020202020202020u;
    std::size_t run = 0;
    for (; run + 8 <= text.size(); run += 8) {
        std::uint64_t block;
        std::memcpy(&block, text.data() + run, 8);
        // A byte below 0x20 borrows into its high bit; a byte of 0x80 and more has it set.
        if ((((block - kBlanks) | block) & kHighBits) != 0)
            break;
    }
    return run;
}

struct Unit
{
    std::size_t length;
    bool clean;
};

/// The lead byte's promise: how many bytes, and what the second one may be (RFC 3629, table of well-formed sequences).
struct Lead
{
    std::size_t length;
    unsigned char secondFrom;
    unsigned char secondTo;
};

Lead LeadOf(unsigned char byte)
{
    if (byte < 0xC2 || byte > 0xF4)
        return {1, 0, 0};
    if (byte < 0xE0)
        return {2, 0x80, 0xBF};
    if (byte < 0xF0)
        return {3, static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80),
                static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF)};
    return {4, static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80),
            static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF)};
}

/// The character, or the piece of a broken one, at the front of a text that is not empty.
Unit FirstUnit(std::string_view text)
{
    const unsigned char first = vk::ToByte(text[0]);
    if (first < 0x80)
        return {1, first >= 0x20 || first == '\t' || first == '\n' || first == '\r'};
    const Lead lead = LeadOf(first);
    std::size_t length = 1;
    for (; length < lead.length && length < text.size(); ++length) {
        const unsigned char byte = vk::ToByte(text[length]);
        if (length == 1 ? byte < lead.secondFrom || byte > lead.secondTo : (byte & 0xC0) != 0x80)
            break;
    }
    if (lead.length == 1 || length < lead.length)
        return {length, false};
    const std::string_view character = text.substr(0, length);
    return {length, character != "\xEF\xBF\xBE" && character != "\xEF\xBF\xBF"}; // U+FFFE, U+FFFF
}

/// How many bytes at the front are clean.
std::size_t CleanRun(std::string_view text)
{
    std::size_t run = 0;
    while (run < text.size()) {
        if (const std::size_t plain = PlainRun(text.substr(run))) {
            run += plain;
            continue;
        }
        const Unit unit = FirstUnit(text.substr(run));
        if (!unit.clean)
            break;
        run += unit.length;
    }
    return run;
}

} // namespace

std::size_t VKstringCleanXmlText(std::string& text)
{
    std::string_view rest(text);
    std::size_t run = CleanRun(rest);
    if (run == rest.size())
        return 0;
    std::size_t replaced = 0;
    std::string clean;
    clean.reserve(text.size() + 16);
    while (run < rest.size()) {
        clean.append(rest.substr(0, run)).append(kReplacement);
        ++replaced;
        rest.remove_prefix(run);
        rest.remove_prefix(FirstUnit(rest).length);
        run = CleanRun(rest);
    }
    clean.append(rest);
    text.swap(clean);
    return replaced;
}
