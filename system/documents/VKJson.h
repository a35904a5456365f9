#pragma once

#include <json/json.h>
#include <string>
#include <string_view>

namespace vk {

/// Reads one JSON object of at most 64 levels. False, with `object` an empty object, for anything else.
bool ParseJsonObject(std::string_view text, Json::Value& object);

/// In one line, without a line feed at its end. Bytes beyond ASCII are written as "\u" codes; what is no UTF-8 becomes
/// U+FFFD.
std::string CompactJson(const Json::Value& value);

/// The member, when `object` is an object that has it; otherwise null. Never throws.
const Json::Value& JsonMember(const Json::Value& object, const char* name);

/// The member's text; empty when there is none.
std::string JsonText(const Json::Value& object, const char* name);

} // namespace vk
