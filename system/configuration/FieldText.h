#pragma once

#include "VKstringCopy.h"

#include <charconv>
#include <cstddef>
#include <string_view>

namespace vk {

/// A text into a field of a record: cut to fit its array, or as a number, which is 0 for a text that is none.
template <std::size_t N> void SetFieldText(char (&field)[N], std::string_view text) { CopyBounded(field, text, N); }

inline void SetFieldText(int& field, std::string_view text)
{
    field = 0;
    std::from_chars(text.data(), text.data() + text.size(), field);
}

} // namespace vk
