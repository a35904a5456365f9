#pragma once

#include "HostMessageFile.h"

#include <json/json.h>

#include <memory>
#include <string>
#include <string_view>

namespace vk {

/// A JSON text that is one object. Throws InputError: no UTF-8, not well formed, a key given twice, something else.
Json::Value ParseObject(std::string_view json);

/// Reads the JSON form of a message file into `file`; members without a key keep their value. Throws InputError that
/// names the key at fault: one that is unknown or missing, a wrong type, a number out of range.
void ReadMessage(const Json::Value& object, VKMessageFile& file);

/// Both.
void ParseMessage(std::string_view json, VKMessageFile& file);

/// Reads a file of up to 64 MiB. Throws InputError that begins with the path.
std::unique_ptr<HostMessageFile> ReadMessageFile(const std::string& path);

} // namespace vk
