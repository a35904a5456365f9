#pragma once

#include <cstdarg>
#include <string>

/// Formats as printf does, into a string of whatever length the text needs. A null format, an empty result and a format
/// error give an empty string.
std::string printfToString(const char* format, ...) __attribute__((format(printf, 1, 2)));

namespace vk {

/// The same with a started argument list, which the caller ends.
std::string FormatV(const char* format, va_list arguments) __attribute__((format(printf, 1, 0)));

} // namespace vk
