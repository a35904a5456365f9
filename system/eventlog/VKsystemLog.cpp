#include "VKsystemLog.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <syslog.h>

namespace {

constexpr std::size_t kLineBuffer = 65535;

/// openlog keeps the pointer that it is given, so identity and syslog calls share one lock.
struct Channel
{
    std::mutex lock;
    std::string identity = program_invocation_short_name;
    VKsystemLog::Sink sink = nullptr;
};

Channel& TheChannel()
{
    static auto* const channel = new Channel; // lives as long as anything can fail
    return *channel;
}

void Write(int priority, const char* function, const char* format, va_list arguments)
{
    Channel& channel = TheChannel();
    const std::lock_guard<std::mutex> guard(channel.lock);

    // "ERROR" stands in information lines too; whoever watches syslog for it relies on that.
    char line[kLineBuffer];
    const int head = snprintf(line, sizeof line, "%s-ERROR %s: ", channel.identity.c_str(), function ? function : "");
    if (head < 0)
        return;
    if (format && static_cast<std::size_t>(head) < sizeof line)
        vsnprintf(line + head, sizeof line - static_cast<std::size_t>(head), format, arguments);

    if (channel.sink) {
        channel.sink(priority, line);
        return;
    }
    openlog(channel.identity.c_str(), LOG_PID, LOG_DAEMON);
    syslog(priority, "%s", line);
    closelog();
}

} // namespace

bool VKsystemLog::WriteInfo(const char* function, const char*, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    Write(LOG_INFO, function, format, arguments);
    va_end(arguments);
    return true;
}

bool VKsystemLog::WriteError(const char* function, const char*, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    Write(LOG_ERR, function, format, arguments);
    va_end(arguments);
    return true;
}

void VKsystemLog::SetIdentity(const std::string& identity)
{
    Channel& channel = TheChannel();
    const std::lock_guard<std::mutex> guard(channel.lock);
    channel.identity = identity;
}

std::string VKsystemLog::GetIdentity()
{
    Channel& channel = TheChannel();
    const std::lock_guard<std::mutex> guard(channel.lock);
    return channel.identity;
}

void VKsystemLog::SetSink(Sink sink)
{
    Channel& channel = TheChannel();
    const std::lock_guard<std::mutex> guard(channel.lock);
    channel.sink = sink;
}
