#pragma once

#include "HostMessageFile.h"

#include <memory>
#include <string>
#include <string_view>

namespace vk {

/// Reads the JSON form of a message file into `file`; members without a key keep their value. Throws InputError that
/// names the key at fault: JSON that is not well formed, a key that is unknown, missing or given twice, a wrong type, a
/// number out of range, text that is not UTF-8.
void ParseMessage(std::string_view json, VKMessageFile& file);

/// Reads a file of up to 64 MiB. Throws InputError that begins with the path.
std::unique_ptr<HostMessageFile> ReadMessageFile(const std::string& path);

} // namespace vk
