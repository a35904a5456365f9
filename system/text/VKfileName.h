#pragma once

#include <string>
#include <string_view>

/// \file
/// Any text as a file name: letters and digits stay, every other byte is written as "%" and its value in hexadecimal.
/// The value is that of the signed byte, so that a byte of 0x80 and more gives eight digits ("%FFFFFFE9"): the settled
/// form, which files on disk already carry.

namespace vk {

std::string EncodeFileName(std::string_view name);

/// The reverse, digits in either case. The eight-digit form gives its one byte back; a "%" without two digits behind
/// it stays as it is.
std::string DecodeFileName(std::string_view name);

} // namespace vk

/// The same on zero-terminated texts: malloc()ed for VKutilFree, null for null.
char* VKutilEncodeFileName(const char* name);
char* VKutilDecodeFileName(const char* name);
