#pragma once

#include "VKsystemLog.h"

#include <mutex>
#include <string>
#include <utility>

/// While it lives, takes the lines that would go to syslog. One at a time.
class SystemLogProbe
{
public:
    SystemLogProbe()
    {
        Take();
        VKsystemLog::SetSink([](int priority, const char* line) {
            const std::lock_guard<std::mutex> guard(s_mutex);
            s_lines += std::to_string(priority) + " " + line + "\n";
        });
    }
    ~SystemLogProbe() { VKsystemLog::SetSink(nullptr); }
    SystemLogProbe(const SystemLogProbe&) = delete;
    SystemLogProbe& operator=(const SystemLogProbe&) = delete;

    /// All lines so far, each "PRIORITY LINE"; they are forgotten.
    std::string Take()
    {
        const std::lock_guard<std::mutex> guard(s_mutex);
        return std::exchange(s_lines, {});
    }
    bool Has(const std::string& text) { return Take().find(text) != std::string::npos; }

private:
    static inline std::mutex s_mutex;
    static inline std::string s_lines; // guarded by s_mutex
};
