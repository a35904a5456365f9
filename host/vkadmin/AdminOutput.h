#pragma once

#include "Options.h"

#include <json/json.h>

#include <string>
#include <utility>
#include <vector>

namespace vk {

using ShownRecord = std::vector<std::pair<std::string, Json::Value>>;

/// One record, all of it: a JSON object on a line, or "key: value" lines.
void PrintRecord(const ShownRecord& record, bool json);

/// Many records: a JSON object a line, or a table of these columns with its heading.
void PrintTable(const std::vector<ShownRecord>& records, Slice<const char*> columns, bool json);

/// The id of a new record: {"id":7}, or the number alone.
void PrintNewId(unsigned long id, bool json);

/// A sentence about what was done, with the same facts as JSON.
void PrintDone(const std::string& sentence, const ShownRecord& facts, bool json);

/// One line on standard error about a record that is refused or not there.
/// \return kExitFailed.
int Refused(const std::string& why);

} // namespace vk
