#pragma once

#include <cstddef>
#include <string_view>

namespace vk {

/// Throws VKDBexception unless a text may stand in a field of `capacity` bytes (terminator included): too long, or
/// with a zero byte inside. Names the field.
void RequireFits(std::string_view text, std::size_t capacity, const char* fieldName);

/// Copies a text into a record's fixed array whole or not at all: what does not fit is refused with the field's name.
void SetText(char* field, std::size_t capacity, std::string_view text, const char* fieldName);

template <std::size_t N> void SetText(char (&field)[N], std::string_view text, const char* fieldName)
{
    SetText(field, N, text, fieldName);
}

/// The text in a record's fixed array; throws when the array holds no terminator.
std::string_view GetText(const char* field, std::size_t capacity, const char* fieldName);

} // namespace vk
