#pragma once

#include <cstddef>
#include <string_view>

namespace vk {

/// The place of the first byte that is no part of a well-formed UTF-8 character (RFC 3629: no surrogates, nothing
/// overlong, nothing above U+10FFFF); npos when there is none.
std::size_t FindInvalidUtf8(std::string_view text);

} // namespace vk
