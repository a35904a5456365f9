#include "VKfileName.h"

#include "VKascii.h"
#include "VKstringCopy.h"

namespace {

// What a signed byte below zero has in front of its own two digits.
constexpr std::string_view kSign = "FFFFFF";

/// How many of the digits behind a "%" are such a sign: 6 or 0.
std::size_t SignDigits(std::string_view digits)
{
    if (digits.size() < kSign.size() + 2)
        return 0;
    for (const char digit : digits.substr(0, kSign.size()))
        if (vk::ToUpper(digit) != 'F')
            return 0;
    return vk::HexByte(digits, kSign.size()) >= 0x80 ? kSign.size() : 0;
}

} // namespace

namespace vk {

std::string EncodeFileName(std::string_view name)
{
    std::string out;
    for (const char c : name) {
        if (IsAlnum(c)) {
            out += c;
            continue;
        }
        const unsigned char byte = ToByte(c);
        out += '%';
        if (byte >= 0x80)
            out += kSign;
        out += kHexDigits[byte >> 4];
        out += kHexDigits[byte & 0x0F];
    }
    return out;
}

std::string DecodeFileName(std::string_view name)
{
    std::string out;
    for (std::size_t at = 0; at < name.size(); ++at) {
        if (name[at] != '%') {
            out += name[at];
            continue;
        }
        const std::size_t sign = SignDigits(name.substr(at + 1));
        const int byte = HexByte(name, at + 1 + sign);
        if (byte < 0) {
            out += '%';
            continue;
        }
        out += static_cast<char>(byte);
        at += sign + 2;
    }
    return out;
}

} // namespace vk

char* VKutilEncodeFileName(const char* name) { return name ? vk::MallocText(vk::EncodeFileName(name)) : nullptr; }

char* VKutilDecodeFileName(const char* name) { return name ? vk::MallocText(vk::DecodeFileName(name)) : nullptr; }
