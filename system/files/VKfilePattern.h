#pragma once

#include <string_view>

namespace vk {

/// Whether a file name matches a pattern in which each "*" stands for any text, in exact case. False when either is
/// empty.
bool FileNameMatches(std::string_view name, std::string_view pattern);

} // namespace vk
