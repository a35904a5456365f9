#include "VKSQLite3Retry.h"

#include <atomic>
#include <unistd.h>

namespace vk {

namespace {

void PlainSleep(unsigned int microseconds) { usleep(microseconds); }

std::atomic<RetrySleep> s_sleep{PlainSleep};

} // namespace

RetrySleep SetRetrySleep(RetrySleep sleep) { return s_sleep.exchange(sleep ? sleep : PlainSleep); }

void RetryPause(unsigned int microseconds) { s_sleep.load()(microseconds); }

} // namespace vk
