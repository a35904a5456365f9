#pragma once

#include <json/json.h>

#include <string>
#include <string_view>

namespace vk {

/// A JSON value on one line, UTF-8 as it is, without the line end.
std::string JsonLine(const Json::Value& value);

/// Text for a terminal: control characters, which foreign text may carry, become "?".
std::string Printable(std::string_view text);

/// A text of several lines as one: "; " between them, control characters made "?".
std::string OneLine(std::string_view text);

} // namespace vk
