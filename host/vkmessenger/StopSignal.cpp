#include "StopSignal.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <poll.h>

#include <fcntl.h>
#include <unistd.h>

namespace vk {

namespace {

std::atomic<bool> g_stop{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set from a signal handler");

/// A byte stands in it once a signal has come: what waits for it wakes however close the signal was to the wait.
int g_wake[2] = {-1, -1};

void Stop(int)
{
    const int error = errno;
    g_stop = true;
    [[maybe_unused]] const ssize_t written = write(g_wake[1], "x", 1);
    errno = error;
}

} // namespace

const std::atomic<bool>& StopOnSignals()
{
    if (g_wake[0] < 0 && pipe2(g_wake, O_CLOEXEC | O_NONBLOCK) == 0) {
        struct sigaction action
        {
        };
        action.sa_handler = Stop;
        sigaction(SIGINT, &action, nullptr);
        sigaction(SIGTERM, &action, nullptr);
    }
    return g_stop;
}

void SleepUntilStop(std::chrono::milliseconds time)
{
    pollfd wake{g_wake[0], POLLIN, 0};
    poll(&wake, 1, static_cast<int>(std::max<long long>(time.count(), 0)));
}

} // namespace vk
