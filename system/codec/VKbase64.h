#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vk {

/// The standard alphabet with "=" padding (RFC 4648). With line breaks a carriage return and a line feed follow every
/// 76 characters, and the end.
std::string EncodeBase64(std::string_view bytes, bool lineBreaks = false);

/// Writes the decoded bytes, never more than three for four characters of text, so that `bytes` may be the text's own
/// memory. White space is skipped, "=" ends the text, and the padding may be missing. Returns how many bytes were
/// written; nothing for a character outside the alphabet or one character too many.
std::optional<std::size_t> DecodeBase64(std::string_view text, unsigned char* bytes);

/// The same into a string of its own.
std::optional<std::string> DecodeBase64(std::string_view text);

/// The bytes of a text as OpenSSL and the contracts of this system want them.
inline const unsigned char* BytesOf(std::string_view text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

/// Foreign bytes as a text; null or a length below 1 gives the empty one.
inline std::string_view TextOf(const unsigned char* bytes, int length)
{
    return bytes && length > 0
               ? std::string_view(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length))
               : std::string_view();
}

} // namespace vk
