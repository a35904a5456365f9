#pragma once

#include <atomic>
#include <chrono>

namespace vk {

/// From now on SIGINT and SIGTERM set the flag instead of ending the process. One for the process.
const std::atomic<bool>& StopOnSignals();

/// Sleeps for that long, or until the flag is set.
void SleepUntilStop(std::chrono::milliseconds time);

} // namespace vk
