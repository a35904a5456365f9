#pragma once

#include "Options.h"

namespace vk {

/// "job-status show": the last known state of one job, as clients are told it.
int ShowJobStatus(const Arguments& arguments);

} // namespace vk
