#pragma once

#include <string>

/// The last resort of the event log: what goes wrong in the logging frame itself is written to syslog. Safe from any
/// thread; never throws.
class VKsystemLog
{
public:
    /// `function` names the reporting operation; it stands in the line, the source file does not. Always true.
    static bool WriteInfo(const char* function, const char* file, const char* format, ...)
        __attribute__((format(printf, 3, 4)));
    static bool WriteError(const char* function, const char* file, const char* format, ...)
        __attribute__((format(printf, 3, 4)));

    /// The name of this process in syslog; by default the program's own.
    static void SetIdentity(const std::string& identity);
    static std::string GetIdentity();

    /// Takes the lines instead of syslog: for hosts with a channel of their own, and for tests. Called with the syslog
    /// priority, one call at a time; it must neither throw nor write to this class. Null brings syslog back.
    using Sink = void (*)(int priority, const char* line);
    static void SetSink(Sink sink);
};
