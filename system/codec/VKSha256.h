#pragma once

#include <string>
#include <string_view>

namespace vk {

/// The SHA-2 digest (SHA-256, FIPS 180-4) of a whole text as 64 lower-case hexadecimal digits.
std::string Sha256Text(std::string_view text);

} // namespace vk
