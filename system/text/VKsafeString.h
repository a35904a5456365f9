#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// \file
/// Foreign bytes made printable, for log texts only: tab is "<TAB>", line feed "<LF>", carriage return "<CR>", escape
/// "<ESC>", every other byte that is not printable ASCII "<" its two hexadecimal digits ">".

namespace vk {

/// Stops once more than `limit` characters are out.
std::string SafeText(std::string_view bytes, std::size_t limit = std::string_view::npos);

} // namespace vk

/// In a buffer of 4096 bytes that each call of the same thread overwrites, so a text of more than 4090 characters is
/// cut. Null or a negative length reads as empty.
const char* VKutilSafeByteString(const char* bytes, int length);
const char* VKutilSafeString(const char* text);
inline const char* VKstringSafeByteString(const char* bytes, int length) { return VKutilSafeByteString(bytes, length); }
inline const char* VKstringSafeString(const char* text) { return VKutilSafeString(text); }
