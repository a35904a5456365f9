#include "VKsysCodec.h"

#include "VKascii.h"
#include "VKbase64.h"
#include "VKescape.h"
#include "VKfileName.h"

namespace {

constexpr vk::Escape kBackslashRows[] = {{'\\', "\\\\"}};
constexpr vk::Escape kFilterRows[] = {{'_', "\\_"}, {'\\', "\\\\"}};
constexpr vk::Escape kJsonRows[] = {{'\\', "\\\\"}, {'"', "\\\""}, {'\n', "\\n"}, {'\r', "\\r"}, {'\t', "\\t"}};
constexpr vk::Escape kUnicodeRows[] = {{'<', "\\u003c"}, {'>', "\\u003e"}};

constexpr vk::EscapeTable kBackslash(kBackslashRows);
constexpr vk::EscapeTable kFilter(kFilterRows);
constexpr vk::EscapeTable kJson(kJsonRows);
constexpr vk::EscapeTable kUnicode(kUnicodeRows);

void AppendPercent(std::string& out, char c)
{
    const unsigned char byte = vk::ToByte(c);
    out += '%';
    out += VKsysCodec::m_hex[byte >> 4];
    out += VKsysCodec::m_hex[byte & 0x0F];
}

} // namespace

std::string VKsysCodec::EncodeBase64(const unsigned char* data, int length, bool lineBreaks)
{
    return vk::EncodeBase64(vk::TextOf(data, length), lineBreaks);
}

bool VKsysCodec::EncodeBase64(const unsigned char* data, int length, std::string& out, bool lineBreaks)
{
    out = EncodeBase64(data, length, lineBreaks);
    return !out.empty();
}

bool VKsysCodec::DecodeBase64(unsigned char* data, int& length)
{
    const auto decoded = data ? vk::DecodeBase64(vk::TextOf(data, length), data) : std::nullopt;
    length = static_cast<int>(decoded.value_or(0));
    return decoded.has_value();
}

std::string VKsysCodec::EncodeName(const std::string& text) { return vk::EncodeFileName(text); }
std::string VKsysCodec::EncodeFileName(const std::string& text) { return vk::EncodeFileName(text); }
std::string VKsysCodec::DecodeName(const std::string& text) { return vk::DecodeFileName(text); }
std::string VKsysCodec::DecodeFileName(const std::string& text) { return vk::DecodeFileName(text); }

std::string VKsysCodec::EncodeUrl(const std::string& text)
{
    std::string out;
    for (const char c : text) {
        const unsigned char byte = vk::ToByte(c);
        if (byte < m_isUrlSafe.size() && m_isUrlSafe[byte])
            out += c == ' ' ? '+' : c;
        else
            AppendPercent(out, c);
    }
    return out;
}

std::string VKsysCodec::DecodeUrl(const std::string& text)
{
    std::string out;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '%') {
            out += text[at] == '+' ? ' ' : text[at];
            continue;
        }
        const int byte = vk::HexByte(text, at + 1);
        if (byte < 0)
            return std::string();
        out += static_cast<char>(byte);
        at += 2;
    }
    return out;
}

int VKsysCodec::VKhttpStrEncode(char* out, int size, const char* in)
{
    constexpr int kLeastSize = 5;
    if (!out || !in || size < kLeastSize)
        return -1;
    std::size_t length = 0;
    std::string piece;
    for (char previous = '\0'; *in != '\0'; previous = *in++) {
        piece.clear();
        if (*in == '\n' && previous != '\r')
            piece = "%0D";
        if (vk::IsAlnum(*in) || *in == '/' || *in == '_' || *in == '.')
            piece += *in;
        else
            AppendPercent(piece, *in);
        if (length + piece.size() >= static_cast<std::size_t>(size))
            break;
        length += piece.copy(out + length, piece.size());
    }
    out[length] = '\0';
    return static_cast<int>(length);
}

std::string VKsysCodec::EscapeJsonString(const std::string& text) { return kJson.Encode(text); }
std::string VKsysCodec::UnescapeJsonString(const std::string& text) { return kJson.Decode(text); }
std::string VKsysCodec::EscapeInternalJSON(const std::string& text) { return kJson.Encode(kJson.Encode(text)); }
std::string VKsysCodec::EncodeUnicodeCharacters(const std::string& text) { return kUnicode.Encode(text); }
std::string VKsysCodec::EscapeBackslash(const std::string& text) { return kBackslash.Encode(text); }
std::string VKsysCodec::UnescapeBackslash(const std::string& text) { return kBackslash.Decode(text); }
std::string VKsysCodec::EncodeDBFilterInput(const std::string& text) { return kFilter.Encode(text); }
