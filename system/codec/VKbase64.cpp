#include "VKbase64.h"

#include "VKascii.h"

#include <openssl/evp.h>

#include <array>

namespace {

constexpr std::size_t kBytesInLine = 57; // 19 groups of four characters
constexpr std::size_t kLinesInChunk = 1024;
constexpr signed char kNoDigit = -1;

constexpr std::array<signed char, 256> DigitValues()
{
    constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::array<signed char, 256> values{};
    for (signed char& value : values)
        value = kNoDigit;
    for (std::size_t i = 0; i < alphabet.size(); ++i)
        values[vk::ToByte(alphabet[i])] = static_cast<signed char>(i);
    return values;
}

constexpr auto kDigitValues = DigitValues();

void AppendChunk(std::string& out, std::string_view bytes)
{
    const std::size_t at = out.size();
    out.resize(at + (bytes.size() + 2) / 3 * 4);
    // The zero that it writes behind its last character meets the string's own.
    EVP_EncodeBlock(reinterpret_cast<unsigned char*>(&out[at]), vk::BytesOf(bytes), static_cast<int>(bytes.size()));
}

} // namespace

namespace vk {

std::string EncodeBase64(std::string_view bytes, bool lineBreaks)
{
    // Without breaks too the text goes in whole lines, since OpenSSL counts in int.
    const std::size_t step = lineBreaks ? kBytesInLine : kBytesInLine * kLinesInChunk;
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4 + (lineBreaks ? bytes.size() / kBytesInLine * 2 + 2 : 0));
    while (!bytes.empty()) {
        const std::string_view chunk = bytes.substr(0, step);
        AppendChunk(out, chunk);
        if (lineBreaks)
            out += "\r\n";
        bytes.remove_prefix(chunk.size());
    }
    return out;
}

std::optional<std::size_t> DecodeBase64(std::string_view text, unsigned char* bytes)
{
    std::size_t written = 0;
    std::size_t digits = 0;
    unsigned int group = 0;
    for (const char c : text) {
        if (c == '=')
            break;
        if (IsSpace(c))
            continue;
        const signed char value = kDigitValues[ToByte(c)];
        if (value == kNoDigit)
            return std::nullopt;
        group = (group << 6 | static_cast<unsigned int>(value)) & 0xFFFFFF;
        if (++digits % 4 == 0) {
            bytes[written++] = static_cast<unsigned char>(group >> 16);
            bytes[written++] = static_cast<unsigned char>(group >> 8);
            bytes[written++] = static_cast<unsigned char>(group);
        }
    }
    // The last group may be short: two digits carry one byte, three carry two, one alone carries none.
    switch (digits % 4) {
    case 1:
        return std::nullopt;
    case 2:
        bytes[written++] = static_cast<unsigned char>(group >> 4);
        break;
    case 3:
        bytes[written++] = static_cast<unsigned char>(group >> 10);
        bytes[written++] = static_cast<unsigned char>(group >> 2);
        break;
    }
    return written;
}

std::optional<std::string> DecodeBase64(std::string_view text)
{
    std::string bytes(text.size(), '\0');
    const std::optional<std::size_t> length = DecodeBase64(text, reinterpret_cast<unsigned char*>(bytes.data()));
    if (!length)
        return std::nullopt;
    bytes.resize(*length);
    return bytes;
}

} // namespace vk
