#pragma once

#include "Options.h"

namespace vk {

/// "receiver export": the receivers that a filter leaves, as CSV.
int ExportReceivers(const Arguments& arguments);

/// "receiver import": new receivers from CSV, all or none. Every row that is refused is told with its line and why.
int ImportReceivers(const Arguments& arguments);

} // namespace vk
