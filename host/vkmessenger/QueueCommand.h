#pragma once

#include "Options.h"

#include <chrono>

namespace vk {

/// "vkmessenger send --queue": works on a queue.
/// \return As RunSend.
int SendQueue(const Arguments& arguments, std::chrono::seconds wait);

/// Throws UsageError when an option is given that only has a meaning with "--queue".
void RequireNoQueueOptions(const Arguments& arguments);

} // namespace vk
