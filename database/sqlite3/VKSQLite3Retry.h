#pragma once

namespace vk {

/// Waits between two attempts on a file that is in use.
using RetrySleep = void (*)(unsigned int microseconds);

/// Replaces the wait for the whole process and gives back the one that was set before; nullptr sets usleep. With it the
/// long retry loops can be watched without spending their time.
RetrySleep SetRetrySleep(RetrySleep sleep);

/// Waits with what is set.
void RetryPause(unsigned int microseconds);

/// Whether a failed open, close or transaction statement is tried again: all bits of BUSY (5), of LOCKED (6) or of
/// IOERR (10) are set. The test is by mask and not by equality, so that it takes in other codes as well; this is meant.
constexpr bool IsRetryable(int code) { return (code & 5) == 5 || (code & 6) == 6 || (code & 10) == 10; }

} // namespace vk
